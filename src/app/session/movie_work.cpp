#include "app/session/movie_work.h"

#include <algorithm>

namespace vornic {

namespace {

/// A record of at most so many bytes says that the picture stays.
constexpr double markBytes = 400;
/// From so many bytes on a frame is all new; what its encoding takes grows no more.
constexpr double newPictureBytes = 150e3;

// Milliseconds of a frame at 1920 x 1080 on two processors. Only their proportions matter, and these hold elsewhere.
constexpr double stillFrame = 0.9; ///< its share of the key frames, and of one frame every half second
constexpr double anyChange = 4.5;
constexpr double newPicture = 4.2;  ///< more
constexpr double eachByte = 5.0e-6; ///< to undo its compression

double workOf(std::uint64_t length)
{
    const auto bytes = static_cast<double>(length);
    if (bytes <= markBytes)
        return stillFrame;
    return anyChange + newPicture * std::min(1.0, bytes / newPictureBytes) + eachByte * bytes;
}

} // namespace

MovieWork::MovieWork(const std::vector<std::pair<std::int64_t, std::uint64_t>> &records)
{
    m_done.reserve(records.size());
    for (const auto &[timestamp, bytes] : records) {
        m_done.push_back({ timestamp, m_all });
        m_all += workOf(bytes);
    }
}

std::optional<double> MovieWork::shareBefore(std::int64_t ticks) const
{
    if (m_done.empty())
        return std::nullopt;
    const auto next = std::ranges::lower_bound(m_done, ticks, {}, &Done::timestamp);
    return (next == m_done.end() ? m_all : next->work) / m_all;
}

} // namespace vornic
