#pragma once

#include <cstdint>
#include <optional>

namespace vornic {

class PKMuxerContext;

/// Bytes a second that a movie takes at most on average: its bit rates.
[[nodiscard]] double movieBytesPerSecond(const PKMuxerContext &movie);

/// Keeps a movie below a number of bytes; a plain value.
///
/// Made by RecordingSession for each recording that has such a limit. The movie is written after the recording, so that
/// its size is forecast: the encoder keeps its average roughly, and of a screen that seldom changes it makes no more
/// than was spooled. Where it has become too large all the same, it is written again with a lower bit rate.
class MovieSizeLimit
{
public:
    explicit MovieSizeLimit(std::uint64_t bytes)
        : m_bytes(bytes)
    {
    }

    /// Whether the movie of what is kept so far may be as large already: so many seconds, and so many bytes of pictures in
    /// the spool.
    [[nodiscard]] bool
    isReached(const PKMuxerContext &movie, double seconds, std::uint64_t pictureBytes) const;
    [[nodiscard]] bool holds(std::uint64_t written) const { return written <= m_bytes; }
    /// With which bit rate \a movie, which took \a written bytes, is to be written again, in bits a second; nothing where
    /// that is no use any more. \a audioSeconds: of the sound in it.
    [[nodiscard]] std::optional<std::int32_t>
    lowerBitRate(const PKMuxerContext &movie, std::uint64_t written, double audioSeconds);

private:
    std::uint64_t m_bytes;
    int m_attempts = 1;
};

} // namespace vornic
