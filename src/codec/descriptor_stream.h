#pragma once

#include "codec/av_support.h"

#include <cstdint>
#include <stop_token>

namespace vornic {

/// An open file as the media libraries read or write it, at a position of its own: several streams share a
/// descriptor and do not disturb each other.
///
/// Made by a MovieFile on its thread.
class DescriptorStream
{
public:
    enum class Mode { Read, Write };

    /// Begins at position 0. Once \a stop was requested, nothing is read or written, and the error is
    /// AVERROR_EXIT.
    DescriptorStream(int borrowedDescriptor, Mode mode, std::stop_token stop = {});
    /// Drops what was not flushed.
    ~DescriptorStream();
    DescriptorStream(const DescriptorStream &) = delete;
    DescriptorStream &operator=(const DescriptorStream &) = delete;

    /// Lives as long as the stream, and keeps the first error that was met.
    [[nodiscard]] AVIOContext *context() const { return m_context; }

private:
    int read(std::uint8_t *bytes, int count);
    int write(const std::uint8_t *bytes, int count);
    [[nodiscard]] std::int64_t seek(std::int64_t offset, int whence);

    int m_descriptor;
    std::stop_token m_stop;
    std::int64_t m_position = 0;
    AVIOContext *m_context = nullptr;
};

} // namespace vornic
