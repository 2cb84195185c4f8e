#include "wayland/shm_buffer.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <utility>

namespace vornic {

namespace {

constexpr int bytesPerPixel = 4;

std::size_t bytesOf(QSize size)
{
    return static_cast<std::size_t>(size.width()) * static_cast<std::size_t>(size.height()) * bytesPerPixel;
}

} // namespace

std::unique_ptr<ShmBuffer> ShmBuffer::create(wl_shm &shm, QSize size)
{
    const std::size_t length = bytesOf(size);
    const int fd = memfd_create("vornic picture", MFD_CLOEXEC);
    void *memory = MAP_FAILED;
    // Allocated, not only sized: a page that is not to be had would be a signal while somebody paints.
    if (fd >= 0 && posix_fallocate(fd, 0, static_cast<off_t>(length)) == 0)
        memory = mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    std::unique_ptr<ShmBuffer> buffer;
    if (memory != MAP_FAILED) {
        const WaylandPtr<wl_shm_pool> pool(wl_shm_create_pool(&shm, fd, static_cast<std::int32_t>(length)));
        WaylandPtr<wl_buffer> handle(wl_shm_pool_create_buffer(pool.get(),
                                                               0,
                                                               size.width(),
                                                               size.height(),
                                                               size.width() * bytesPerPixel,
                                                               WL_SHM_FORMAT_ARGB8888));
        buffer.reset(new ShmBuffer(static_cast<std::byte *>(memory), size, std::move(handle)));
    }
    if (fd >= 0)
        close(fd);
    return buffer;
}

ShmBuffer::ShmBuffer(std::byte *memory, QSize size, WaylandPtr<wl_buffer> handle)
    : m_memory(memory)
    , m_length(bytesOf(size))
    , m_picture(reinterpret_cast<uchar *>(memory),
                size.width(),
                size.height(),
                static_cast<qsizetype>(size.width()) * bytesPerPixel,
                QImage::Format_ARGB32_Premultiplied)
    , m_handle(std::move(handle))
{
    static constexpr wl_buffer_listener listener { [](void *data, wl_buffer * /*buffer*/) {
        auto &buffer = *static_cast<ShmBuffer *>(data);
        buffer.m_isRead = false;
        if (buffer.m_returned)
            buffer.m_returned();
    } };
    wl_buffer_add_listener(m_handle.get(), &listener, this);
}

ShmBuffer::~ShmBuffer()
{
    munmap(m_memory, m_length);
}

wl_buffer *ShmBuffer::handOver()
{
    m_isRead = true;
    return m_handle.get();
}

} // namespace vornic
