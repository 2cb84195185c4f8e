#include "codec/movie_file.h"

#include "base/PKTimebase.h"
#include "codec/movie_failure.h"

#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace vornic {

namespace {

QString temporaryNameBeside(const QString &filename)
{
    return QStringLiteral("%1/.vornic-%2.part")
        .arg(QFileInfo(filename).absolutePath(), QUuid::createUuid().toString(QUuid::WithoutBraces));
}

/// With the scheme, a file name that has a colon in it is not taken for a URL.
QByteArray fileAddress(const QString &path)
{
    return "file:" + QFile::encodeName(path);
}

} // namespace

MovieFile::MovieFile(QString filename)
    : m_filename(std::move(filename))
{
    checkFinalName();
    createTemporary();
    AVFormatContext *format = nullptr;
    const int result
        = avformat_alloc_output_context2(&format, nullptr, "mp4", fileAddress(m_temporaryName).constData());
    m_format.reset(format);
    try {
        checkWritten(result);
        checkWritten(avio_open2(&m_format->pb, m_format->url, AVIO_FLAG_WRITE, nullptr, nullptr));
    } catch (...) {
        QFile::remove(m_temporaryName);
        throw;
    }
}

MovieFile::~MovieFile()
{
    if (m_format->pb)
        avio_closep(&m_format->pb);
    if (!m_temporaryName.isEmpty())
        QFile::remove(m_temporaryName);
}

/// A final name that cannot be replaced is reported before the work, not when the finished movie is renamed.
void MovieFile::checkFinalName() const
{
    struct stat existing {
    };
    if (::lstat(QFile::encodeName(m_filename).constData(), &existing) == 0)
        checkWritten(S_ISDIR(existing.st_mode) ? AVERROR(EISDIR) : 0);
    else if (errno != ENOENT)
        checkWritten(AVERROR(errno));
}

void MovieFile::createTemporary()
{
    const QString name = temporaryNameBeside(m_filename);
    const int descriptor = ::open(
        QFile::encodeName(name).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666); // less the umask
    if (descriptor < 0)
        checkWritten(AVERROR(errno));
    ::close(descriptor);
    m_temporaryName = name;
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
    syncToDisk(m_temporaryName, O_WRONLY);
    const QByteArray from = QFile::encodeName(m_temporaryName);
    const QByteArray to = QFile::encodeName(m_filename);
    if (std::rename(from.constData(), to.constData()) != 0)
        checkWritten(AVERROR(errno));
    m_temporaryName.clear();
    syncToDisk(QFileInfo(m_filename).absolutePath(), O_RDONLY | O_DIRECTORY);
}

void MovieFile::closeTemporary()
{
    avio_flush(m_format->pb);
    const int error = m_format->pb->error;
    const int closed = avio_closep(&m_format->pb);
    checkWritten(error);
    checkWritten(closed);
}

void MovieFile::syncToDisk(const QString &path, int flags) const
{
    const int descriptor = ::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC);
    if (descriptor < 0)
        checkWritten(AVERROR(errno));
    const int error = ::fsync(descriptor) == 0 ? 0 : errno;
    ::close(descriptor);
    // Some file systems cannot sync a folder (or anything); what was written is still there.
    if (error != 0 && error != EINVAL && error != ENOTSUP)
        checkWritten(AVERROR(error));
}

} // namespace vornic
