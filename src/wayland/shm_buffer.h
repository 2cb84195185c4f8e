#pragma once

#include "wayland/wayland_handle.h"

#include <QImage>
#include <QSize>

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>

namespace vornic {

/// A picture in memory that is shared with the compositor.
///
/// Made by who shows something of its own; on the thread of its connection. It starts wholly transparent.
class ShmBuffer
{
public:
    /// Null when the memory is not to be had.
    [[nodiscard]] static std::unique_ptr<ShmBuffer> create(wl_shm &shm, QSize size);
    ~ShmBuffer();
    ShmBuffer(const ShmBuffer &) = delete;
    ShmBuffer &operator=(const ShmBuffer &) = delete;

    /// Format_ARGB32_Premultiplied, over the shared memory itself; to be painted while the compositor does not read.
    [[nodiscard]] QImage &picture() { return m_picture; }
    /// Whether the compositor may still read what was handed to it.
    [[nodiscard]] bool isRead() const { return m_isRead; }
    /// What is to be attached to a surface; from then on it is read.
    [[nodiscard]] wl_buffer *handOver();
    /// The compositor reads it no more.
    void onReturned(std::function<void()> callback) { m_returned = std::move(callback); }

private:
    ShmBuffer(std::byte *memory, QSize size, WaylandPtr<wl_buffer> handle);

    std::byte *const m_memory; ///< mapped
    const std::size_t m_length;
    QImage m_picture;
    WaylandPtr<wl_buffer> m_handle;
    bool m_isRead = false;
    std::function<void()> m_returned;
};

} // namespace vornic
