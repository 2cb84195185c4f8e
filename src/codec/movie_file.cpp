#include "codec/movie_file.h"

#include "base/PKTimebase.h"
#include "codec/movie_failure.h"

#include <QFile>

namespace vornic {

namespace {

/// With the scheme, a file name that has a colon in it is not taken for a URL.
QByteArray fileAddress(const QString &path)
{
    return "file:" + QFile::encodeName(path);
}

} // namespace

MovieFile::MovieFile(QString filename)
    : m_filename(std::move(filename))
    , m_part(m_filename)
{
    AVFormatContext *format = nullptr;
    const int result
        = avformat_alloc_output_context2(&format, nullptr, "mp4", fileAddress(m_part.path()).constData());
    m_format.reset(format);
    checkWritten(result);
    checkWritten(avio_open2(&m_format->pb, m_format->url, AVIO_FLAG_WRITE, nullptr, nullptr));
}

MovieFile::~MovieFile()
{
    if (m_format->pb)
        avio_closep(&m_format->pb);
}

void MovieFile::checkWritten(int result) const
{
    if (result < 0)
        throw MovieFailure(writingError(m_filename, result));
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
    packet.stream_index = track;
    av_packet_rescale_ts(&packet, timeBase, m_format->streams[track]->time_base);
    checkWritten(av_interleaved_write_frame(m_format.get(), &packet));
    // The muxer does not return every error of its buffered output.
    checkWritten(m_format->pb->error);
}

void MovieFile::complete()
{
    checkWritten(av_write_trailer(m_format.get()));
    closeTemporary();
    checkWritten(m_part.sync());
    checkWritten(m_part.renameTo(m_filename));
}

void MovieFile::closeTemporary()
{
    avio_flush(m_format->pb);
    const int error = m_format->pb->error;
    const int closed = avio_closep(&m_format->pb);
    checkWritten(error);
    checkWritten(closed);
}

} // namespace vornic
