#include "codec/movie_proof.h"

#include "base/PKTimebase.h"
#include "base/log.h"
#include "codec/movie_failure.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <utility>

namespace vornic {

namespace {

/// Of a packet's end that is looked for in the file.
constexpr qsizetype endingBytes = 64;

/// Samples of one AAC frame: the encoder rounds the length of the sound to no more than that.
constexpr std::int64_t maxSoundDifference = 1024;

constexpr AVRational ticks { 1, static_cast<int>(PKTimebase) };

} // namespace

/// Through the descriptor that it was written with, and not through the file's name: that may lead to another file.
MovieProof::MovieProof(int borrowedDescriptor, QString filename)
    : m_filename(std::move(filename))
    , m_stream(borrowedDescriptor, DescriptorStream::Mode::Read)
{
    AVFormatContext *format = avformat_alloc_context();
    if (!format)
        throw std::bad_alloc();
    format->pb = m_stream.context();
    const int result = avformat_open_input(&format, nullptr, av_find_input_format("mp4"), nullptr);
    m_format.reset(format);
    require(result >= 0, QStringLiteral("no readable index (%1)").arg(avErrorText(result)));
}

void MovieProof::check(const MovieContents &contents)
{
    checkPictures(contents);
    checkSounds(contents);
}

/// The window is larger than what is taken of it, so that no part of a start code at its beginning is taken.
QByteArray MovieProof::endingOf(QByteArrayView packet)
{
    constexpr QByteArrayView startCode("\0\0\1", 3);
    QByteArrayView ending = packet.last(std::min(packet.size(), endingBytes + startCode.size()));
    if (const qsizetype at = ending.lastIndexOf(startCode); at >= 0)
        ending = ending.sliced(at + startCode.size());
    return ending.last(std::min(ending.size(), endingBytes)).toByteArray();
}

void MovieProof::checkPictures(const MovieContents &contents)
{
    const std::vector<AVStream *> streams = streamsOf(AVMEDIA_TYPE_VIDEO);
    require(!streams.empty(), QStringLiteral("no pictures"));
    require(streams.size() == 1, QStringLiteral("two tracks of pictures"));
    AVStream *const stream = streams.front();
    const QSize size(stream->codecpar->width, stream->codecpar->height);
    require(size == contents.pictureSize,
            QStringLiteral("pictures of %1 x %2 pixels").arg(size.width()).arg(size.height()));
    const int frames = avformat_index_get_entries_count(stream);
    require(frames == contents.frames, QStringLiteral("%1 of %2 frames").arg(frames).arg(contents.frames));
    // What is shown before time 0 has no place in a movie.
    const std::int64_t begin = av_rescale_q(stream->start_time, stream->time_base, ticks);
    require(begin == std::max<std::int64_t>(contents.begin, 0),
            QStringLiteral("pictures from %1 on, not from %2").arg(begin).arg(contents.begin));
    const std::int64_t end = begin + av_rescale_q(stream->duration, stream->time_base, ticks);
    require(end == contents.end, QStringLiteral("pictures until %1, not %2").arg(end).arg(contents.end));
    checkSamples(*stream, contents.lastFrame);
}

void MovieProof::checkSounds(const MovieContents &contents)
{
    const std::vector<AVStream *> streams = streamsOf(AVMEDIA_TYPE_AUDIO);
    std::size_t found = 0;
    for (const MovieContents::Sound &sound : contents.sounds) {
        if (sound.samples == 0)
            continue;
        require(found < streams.size(), QStringLiteral("no sound"));
        checkSound(*streams[found++], sound);
    }
    require(found == streams.size(), QStringLiteral("sound that was not put in"));
}

void MovieProof::checkSound(AVStream &stream, const MovieContents::Sound &sound)
{
    const AVCodecParameters &format = *stream.codecpar;
    require(format.sample_rate == sound.sampleRate && format.ch_layout.nb_channels == sound.channels,
            QStringLiteral("sound of %1 Hz, %2 channels")
                .arg(format.sample_rate)
                .arg(format.ch_layout.nb_channels));
    const std::int64_t samples = av_rescale_q(stream.duration, stream.time_base, { 1, sound.sampleRate });
    require(std::abs(samples - sound.samples) <= maxSoundDifference,
            QStringLiteral("%1 of %2 samples of sound").arg(samples).arg(sound.samples));
    checkSamples(stream, sound.last);
}

/// All samples of a track lie within the file, and the last one is as it was put in.
void MovieProof::checkSamples(AVStream &stream, const QByteArray &lastEnding)
{
    const std::int64_t fileBytes = avio_size(m_format->pb);
    const int count = avformat_index_get_entries_count(&stream);
    require(count > 0, QStringLiteral("a track without samples"));
    const AVIndexEntry *entry = nullptr;
    for (int i = 0; i < count; ++i) {
        entry = avformat_index_get_entry(&stream, i);
        const bool isInside = entry->pos >= 0 && entry->size > 0 && entry->pos + entry->size <= fileBytes;
        if (!isInside)
            fail(QStringLiteral("sample %1 of %2 beyond the file's end").arg(i + 1).arg(count));
    }
    QByteArray last(entry->size, Qt::Uninitialized);
    const std::int64_t position = avio_seek(m_format->pb, entry->pos, SEEK_SET);
    const int bytes = position < 0 ? 0
                                   : avio_read(m_format->pb,
                                               reinterpret_cast<unsigned char *>(last.data()),
                                               static_cast<int>(last.size()));
    require(bytes == last.size() && last.endsWith(lastEnding),
            QStringLiteral("another last sample than was put in"));
}

std::vector<AVStream *> MovieProof::streamsOf(AVMediaType type) const
{
    std::vector<AVStream *> streams;
    for (unsigned i = 0; i < m_format->nb_streams; ++i) {
        if (m_format->streams[i]->codecpar->codec_type == type)
            streams.push_back(m_format->streams[i]);
    }
    return streams;
}

void MovieProof::require(bool isTrue, const QString &otherwise) const
{
    if (!isTrue)
        fail(otherwise);
}

void MovieProof::fail(const QString &finding) const
{
    logMessage(QStringLiteral("The movie %1 is not whole: it has %2.").arg(m_filename, finding));
    throw MovieFailure({ ErrorKind::Incomplete, ErrorSubject::File, m_filename, finding });
}

} // namespace vornic
