#include "codec/movie_file.h"

#include "base/PKTimebase.h"
#include "codec/movie_failure.h"
#include "codec/movie_proof.h"

#include <cerrno>
#include <new>
#include <utility>

namespace vornic {

MovieFile::MovieFile(QString filename, std::stop_token stop)
    : m_filename(std::move(filename))
    , m_stop(std::move(stop))
    , m_part(m_filename)
{
    // A program that was killed before its journal named the folder has left one that no recovery looks for.
    removeStalePartFiles(folderOfMovie(m_filename));
    createFormat();
    m_writer.emplace(m_part.borrowedDescriptor(), DescriptorStream::Mode::Write, m_stop);
    m_format->pb = m_writer->context();
}

MovieFile::~MovieFile() = default;

/// Everything goes through the descriptor that was locked and is synced, and nothing through the file's name: also
/// what the muxer reads back to put the index in front.
void MovieFile::createFormat()
{
    AVFormatContext *format = nullptr;
    const int result = avformat_alloc_output_context2(&format, nullptr, "mp4", nullptr);
    m_format.reset(format);
    checkWritten(result);
    m_format->opaque = this;
    m_format->io_open
        = [](AVFormatContext *context, AVIOContext **stream, const char *, int flags, AVDictionary **) {
              return (flags & AVIO_FLAG_WRITE) != 0
                  ? AVERROR(ENOSYS)
                  : static_cast<MovieFile *>(context->opaque)->openReader(*stream);
          };
    m_format->io_close2 = [](AVFormatContext *context, AVIOContext *stream) {
        const int error = stream->error;
        static_cast<MovieFile *>(context->opaque)->m_reader.reset();
        return error;
    };
}

/// Called through the library, which an exception must not cross.
int MovieFile::openReader(AVIOContext *&stream) noexcept
{
    try {
        m_reader.emplace(m_part.borrowedDescriptor(), DescriptorStream::Mode::Read, m_stop);
    } catch (const std::bad_alloc &) {
        return AVERROR(ENOMEM);
    }
    stream = m_reader->context();
    return 0;
}

void MovieFile::checkWritten(int result) const
{
    if (result < 0)
        throw MovieFailure(writingError(m_filename, m_stop.stop_requested() ? AVERROR_EXIT : result));
}

void MovieFile::checkNotCancelled() const
{
    checkWritten(m_stop.stop_requested() ? AVERROR_EXIT : 0);
}

int MovieFile::addTrack(const AVCodecContext &encoder)
{
    AVStream *stream = avformat_new_stream(m_format.get(), nullptr);
    if (!stream)
        throw std::bad_alloc();
    stream->time_base = encoder.time_base;
    checkWritten(avcodec_parameters_from_context(stream->codecpar, &encoder));
    return stream->index;
}

int MovieFile::addTrack(const AVCodecContext &encoder, const QString &title, bool isDefault)
{
    const int track = addTrack(encoder);
    AVStream &stream = *m_format->streams[track];
    const QByteArray text = title.toUtf8();
    // Some players read the one, some the other.
    for (const char *key : { "title", "handler_name" })
        checkWritten(av_dict_set(&stream.metadata, key, text.constData(), 0));
    stream.disposition = isDefault ? AV_DISPOSITION_DEFAULT : 0;
    return track;
}

void MovieFile::writeHeader()
{
    AVDictionary *options = nullptr;
    av_dict_set(&options, "movflags", "+faststart", 0);
    // PKTimebase ticks in the picture track and in the edit lists keep every time exact.
    av_dict_set_int(&options, "video_track_timescale", PKTimebase, 0);
    av_dict_set_int(&options, "movie_timescale", PKTimebase, 0);
    const int result = avformat_write_header(m_format.get(), &options);
    av_dict_free(&options);
    checkWritten(result);
}

void MovieFile::mux(AVPacket &packet, int track, AVRational timeBase)
{
    checkNotCancelled();
    packet.stream_index = track;
    av_packet_rescale_ts(&packet, timeBase, m_format->streams[track]->time_base);
    checkWritten(av_interleaved_write_frame(m_format.get(), &packet));
    // The muxer does not return every error of its buffered output.
    checkWritten(m_format->pb->error);
}

QString MovieFile::complete(const MovieContents &contents, const std::optional<FileIdentity> &replaced)
{
    checkWritten(av_write_trailer(m_format.get()));
    avio_flush(m_format->pb);
    checkWritten(m_format->pb->error);
    checkWritten(m_part.sync());
    checkStillThere();
    MovieProof(m_part.borrowedDescriptor(), m_filename).check(contents);
    checkNotCancelled();
    checkWritten(m_part.finish(replaced));
    checkStillThere();
    return m_part.moviePath();
}

/// What is renamed by its name is what was written and proven, and it is where its user looks for it.
void MovieFile::checkStillThere() const
{
    const MoviePlace &place = m_part.place();
    if (m_part.isAtItsPath() && place.folderIsAtItsPath())
        return;
    Error error = writingError(m_filename, AVERROR(ENOENT));
    if (place.folderIsThere() && place.folderIsAtItsPath())
        error.kind = ErrorKind::Incomplete;
    throw MovieFailure(error);
}

} // namespace vornic
