#include "app/session/recording_clock.h"

#include "base/PKTimebase.h"

#include <cmath>
#include <limits>
#include <utility>

namespace vornic {

namespace {

constexpr double unset = std::numeric_limits<double>::quiet_NaN();

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

std::optional<std::int64_t> RecordingClock::timestamp() const
{
    const double origin = awaitsSound() ? m_firstSound : m_firstPass;
    if (std::isnan(origin))
        return std::nullopt;
    return static_cast<std::int64_t>((now() - origin) * static_cast<double>(PKTimebase));
}

void RecordingClock::setOnce(std::atomic<double> &time, double seconds)
{
    double expected = unset;
    time.compare_exchange_strong(expected, seconds);
}

} // namespace vornic
