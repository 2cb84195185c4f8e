#include "audio/drift_follower.h"

#include <algorithm>

namespace vornic {

namespace {

/// A share of the sound's length: a hundredth of a semitone. The clock of a sound card is off by half as much at worst.
constexpr double most = 0.0006;

/// Of the control, radians a second. It is critically damped: what it follows is not overshot.
constexpr double frequency = 0.1;

} // namespace

double DriftFollower::follow(double error, double seconds)
{
    const double drift = m_drift + frequency * frequency * error * seconds;
    const double wanted = 2 * frequency * error + drift;
    // While it can do no more, there is nothing to be learnt from an error that stays.
    if (wanted > -most && wanted < most)
        m_drift = drift;
    return std::clamp(wanted, -most, most);
}

} // namespace vornic
