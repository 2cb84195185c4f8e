#include "app/session/movie_size_limit.h"

#include "codec/PKMuxerContext.h"
#include "codec/encoder_settings.h"

#include <algorithm>

namespace vornic {

namespace {

/// Of the size that is asked for, what the forecast is to fill, and what a movie that is written again aims at.
constexpr double forecastShare = 0.95;
constexpr double aimedShare = 0.9;

constexpr int maxAttempts = 3;

double videoBytesPerSecond(const PKMuxerContext &movie)
{
    return static_cast<double>(
               std::max<std::int64_t>(movie.videoBitrate(), encoder_settings::minVideoBitrate))
        / 8;
}

double audioBytesPerSecond(const PKMuxerContext &movie)
{
    if (movie.audioCodecID() == PKMuxerContext::audioCodecNone)
        return 0;
    const auto tracks = std::max<qsizetype>(1, movie.audioTracks().size());
    return static_cast<double>(tracks * encoder_settings::audioBitrate) / 8;
}

} // namespace

double movieBytesPerSecond(const PKMuxerContext &movie)
{
    return videoBytesPerSecond(movie) + audioBytesPerSecond(movie);
}

bool MovieSizeLimit::isReached(const PKMuxerContext &movie, double seconds, std::uint64_t pictureBytes) const
{
    const double video = std::min(videoBytesPerSecond(movie) * seconds, static_cast<double>(pictureBytes));
    return video + audioBytesPerSecond(movie) * seconds >= forecastShare * static_cast<double>(m_bytes);
}

std::optional<std::int32_t>
MovieSizeLimit::lowerBitRate(const PKMuxerContext &movie, std::uint64_t written, double audioSeconds)
{
    const double audio = audioBytesPerSecond(movie) * audioSeconds;
    const double video = static_cast<double>(written) - audio;
    const double aim = aimedShare * static_cast<double>(m_bytes) - audio;
    if (holds(written) || m_attempts == maxAttempts || aim <= 0 || video <= 0
        || movie.videoBitrate() <= encoder_settings::minVideoBitrate)
        return std::nullopt;
    ++m_attempts;
    return static_cast<std::int32_t>(aim / video * movie.videoBitrate());
}

} // namespace vornic
