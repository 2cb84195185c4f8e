#include "app/session/disk_forecast.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace vornic {

namespace {

/// How far back the rate is measured, and with how much less it is known.
constexpr double windowSeconds = 30;
constexpr double firstSeconds = 5;

double secondsUntil(double bytes, double bytesPerSecond)
{
    if (bytes <= 0)
        return 0;
    return bytesPerSecond > 0 ? bytes / bytesPerSecond : std::numeric_limits<double>::infinity();
}

double growth(const DiskForecast::Sample &from, const DiskForecast::Sample &to)
{
    return static_cast<double>(to.spooledBytes) - static_cast<double>(from.spooledBytes);
}

} // namespace

void DiskForecast::add(const Sample &sample)
{
    if (!m_samples.empty() && sample.seconds <= m_samples.back().seconds)
        return;
    m_samples.push_back(sample);
    while (m_samples.size() > 2 && sample.seconds - m_samples[1].seconds >= windowSeconds)
        m_samples.pop_front();
}

std::optional<DiskForecast::Room> DiskForecast::room() const
{
    if (m_samples.empty() || m_samples.back().seconds - m_samples.front().seconds < firstSeconds)
        return std::nullopt;
    const DiskSpace &space = m_samples.back().space;
    std::optional<Room> room;
    if (space.spoolFree)
        room = { spoolSeconds(), Limit::Spool };
    if (space.movieFree) {
        const double seconds = movieSeconds();
        if (!room || seconds < room->seconds)
            room = { seconds, Limit::Movie };
    }
    return room;
}

/// Bytes a second.
double DiskForecast::spoolRate() const
{
    const Sample &first = m_samples.front();
    const Sample &last = m_samples.back();
    return growth(first, last) / (last.seconds - first.seconds);
}

/// Bytes a second that other programs take from \a volume: the least that they took in a third of the window.
double DiskForecast::othersRate(Free volume) const
{
    constexpr std::size_t parts = 3;
    const std::size_t last = m_samples.size() - 1;
    if (last < parts || m_samples.back().seconds - m_samples.front().seconds < windowSeconds)
        return 0;
    const bool holdsSpool = volume == &DiskSpace::spoolFree || m_samples.back().space.isOneVolume;
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t part = 0; part < parts; ++part) {
        const Sample &from = m_samples[last * part / parts];
        const Sample &to = m_samples[last * (part + 1) / parts];
        if (!(from.space.*volume) || !(to.space.*volume))
            return 0;
        const double taken
            = static_cast<double>(*(from.space.*volume)) - static_cast<double>(*(to.space.*volume));
        const double ours = holdsSpool ? growth(from, to) : 0;
        least = std::min(least, (taken - ours) / (to.seconds - from.seconds));
    }
    return std::max(least, 0.0);
}

double DiskForecast::spoolSeconds() const
{
    const DiskSpace &space = m_samples.back().space;
    const double left = static_cast<double>(*space.spoolFree) - m_keptFree;
    const double rate = spoolRate() + othersRate(&DiskSpace::spoolFree);
    return space.isOneVolume ? secondsWithMovie(left, rate) : secondsUntil(left, rate);
}

/// Until the movie of what is recorded does not fit any more.
double DiskForecast::movieSeconds() const
{
    const DiskSpace &space = m_samples.back().space;
    const double others = othersRate(&DiskSpace::movieFree) + (space.isOneVolume ? spoolRate() : 0);
    return secondsWithMovie(static_cast<double>(*space.movieFree), others);
}

/// Until the movie is as large as the rest of \a bytes, of which \a othersRate a second are taken by others; of the two
/// estimates of its size the smaller counts.
double DiskForecast::secondsWithMovie(double bytes, double othersRate) const
{
    const Sample &now = m_samples.back();
    const double byBitRate = secondsUntil(bytes - now.movieBytesPerSecond * now.movieSeconds,
                                          othersRate + now.movieBytesPerSecond);
    const double bySpool
        = secondsUntil(bytes - static_cast<double>(now.spooledBytes), othersRate + spoolRate());
    return std::max(byBitRate, bySpool);
}

std::uint64_t DiskForecast::movieBytesOnSpoolVolume() const
{
    if (m_samples.empty() || !m_samples.back().space.isOneVolume)
        return 0;
    const Sample &now = m_samples.back();
    return std::min(static_cast<std::uint64_t>(now.movieBytesPerSecond * now.movieSeconds), now.spooledBytes);
}

} // namespace vornic
