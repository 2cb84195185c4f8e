#include "app/session/recording_clock.h"

#include "base/PKTimebase.h"

#include <algorithm>
#include <cmath>
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

/// Not a number before it is known.
double RecordingClock::origin() const
{
    return awaitsSound() ? m_firstSound : m_firstPass;
}

/// When all is recorded, by the absolute clock, as far as is known now. With the mutex held.
double RecordingClock::end() const
{
    const double begin = origin();
    if (m_length == never || std::isnan(begin))
        return never;
    double end = begin + m_length;
    for (const Span &pause : m_pauses) {
        if (pause.begin < end && pause.end > begin)
            end += pause.end - std::max(pause.begin, begin);
    }
    return end;
}

bool RecordingClock::isOver() const
{
    const std::lock_guard lock(m_mutex);
    return m_now() >= end();
}

std::vector<RecordingClock::Span> RecordingClock::recordedPartsOf(double begin, double end) const
{
    std::vector<Span> parts;
    const std::lock_guard lock(m_mutex);
    end = std::min(end, this->end());
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
    const double begin = origin();
    if (std::isnan(begin))
        return std::nullopt;
    return static_cast<std::int64_t>(recordedSeconds(begin, now()) * static_cast<double>(PKTimebase));
}

void RecordingClock::setOnce(std::atomic<double> &time, double seconds)
{
    double expected = unset;
    time.compare_exchange_strong(expected, seconds);
}

} // namespace vornic
