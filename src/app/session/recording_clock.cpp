#include "app/session/recording_clock.h"

#include "base/PKTimebase.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace vornic {

namespace {

constexpr double unset = std::numeric_limits<double>::quiet_NaN();
constexpr double never = std::numeric_limits<double>::infinity();

} // namespace

RecordingClock::RecordingClock(Origin origin, Now now)
    : m_now(std::move(now))
    , m_origin(origin)
    , m_firstPass(unset)
    , m_firstSound(unset)
{
}

void RecordingClock::goOnWithoutSound()
{
    m_firstPass = m_now();
    m_origin = Origin::FirstPass;
}

void RecordingClock::pause()
{
    const std::lock_guard lock(m_mutex);
    if (m_pauses.empty() || m_pauses.back().end < never)
        m_pauses.push_back({ m_now(), never });
}

void RecordingClock::resume()
{
    const std::lock_guard lock(m_mutex);
    if (!m_pauses.empty() && m_pauses.back().end == never)
        m_pauses.back().end = m_now();
}

bool RecordingClock::isPaused() const
{
    const std::lock_guard lock(m_mutex);
    return !m_pauses.empty() && m_pauses.back().end == never;
}

bool RecordingClock::wasPausedSince(double seconds) const
{
    const std::lock_guard lock(m_mutex);
    return !m_pauses.empty() && m_pauses.back().end > seconds;
}

std::vector<RecordingClock::Span> RecordingClock::recordedPartsOf(double begin, double end) const
{
    std::vector<Span> parts;
    const std::lock_guard lock(m_mutex);
    for (const Span &pause : m_pauses) {
        if (begin < std::min(pause.begin, end))
            parts.push_back({ begin, std::min(pause.begin, end) });
        begin = std::max(begin, pause.end);
    }
    if (begin < end)
        parts.push_back({ begin, end });
    return parts;
}

double RecordingClock::recordedSeconds(double begin, double end) const
{
    if (end < begin)
        return end - begin;
    double seconds = 0;
    for (const Span &part : recordedPartsOf(begin, end))
        seconds += part.end - part.begin;
    return seconds;
}

std::optional<std::int64_t> RecordingClock::timestamp() const
{
    const double origin = awaitsSound() ? m_firstSound : m_firstPass;
    if (std::isnan(origin))
        return std::nullopt;
    return static_cast<std::int64_t>(recordedSeconds(origin, now()) * static_cast<double>(PKTimebase));
}

void RecordingClock::setOnce(std::atomic<double> &time, double seconds)
{
    double expected = unset;
    time.compare_exchange_strong(expected, seconds);
}

} // namespace vornic
