#include "codec/descriptor_stream.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <new>
#include <utility>

namespace vornic {

namespace {

/// Gathered before a system call, in bytes.
constexpr std::size_t bufferBytes = 1 << 16;

} // namespace

DescriptorStream::DescriptorStream(int borrowedDescriptor, Mode mode, std::stop_token stop)
    : m_descriptor(borrowedDescriptor)
    , m_stop(std::move(stop))
{
    auto *buffer = static_cast<unsigned char *>(av_malloc(bufferBytes));
    if (!buffer)
        throw std::bad_alloc();
    // Generic, because releases of the library differ in whether the bytes to be written are const.
    m_context = avio_alloc_context(
        buffer,
        bufferBytes,
        mode == Mode::Write ? 1 : 0,
        this,
        [](void *self, std::uint8_t *bytes, int count) {
            return static_cast<DescriptorStream *>(self)->read(bytes, count);
        },
        [](void *self, auto *bytes, int count) {
            return static_cast<DescriptorStream *>(self)->write(bytes, count);
        },
        [](void *self, std::int64_t offset, int whence) {
            return static_cast<DescriptorStream *>(self)->seek(offset, whence);
        });
    if (!m_context) {
        av_free(buffer);
        throw std::bad_alloc();
    }
}

DescriptorStream::~DescriptorStream()
{
    av_freep(static_cast<void *>(&m_context->buffer)); // the library may have replaced the first one
    avio_context_free(&m_context);
}

int DescriptorStream::read(std::uint8_t *bytes, int count)
{
    if (m_stop.stop_requested())
        return AVERROR_EXIT;
    ssize_t result = 0;
    do {
        result = ::pread(m_descriptor, bytes, static_cast<std::size_t>(count), m_position);
    } while (result < 0 && errno == EINTR);
    if (result < 0)
        return AVERROR(errno);
    m_position += result;
    return result == 0 ? AVERROR_EOF : static_cast<int>(result);
}

int DescriptorStream::write(const std::uint8_t *bytes, int count)
{
    if (m_stop.stop_requested())
        return AVERROR_EXIT;
    int done = 0;
    while (done < count) {
        const ssize_t result
            = ::pwrite(m_descriptor, bytes + done, static_cast<std::size_t>(count - done), m_position);
        if (result < 0 && errno != EINTR)
            return AVERROR(errno);
        if (result == 0)
            return AVERROR(EIO);
        if (result > 0) {
            done += static_cast<int>(result);
            m_position += result;
        }
    }
    return done;
}

/// The library asks for the size or for an absolute position, and reckons the rest itself.
std::int64_t DescriptorStream::seek(std::int64_t offset, int whence)
{
    struct stat file {
    };
    if ((whence & AVSEEK_SIZE) != 0)
        return ::fstat(m_descriptor, &file) == 0 ? file.st_size : AVERROR(errno);
    if ((whence & ~AVSEEK_FORCE) != SEEK_SET || offset < 0)
        return AVERROR(EINVAL);
    m_position = offset;
    return m_position;
}

} // namespace vornic
