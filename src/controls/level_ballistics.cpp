#include "controls/level_ballistics.h"

#include <algorithm>
#include <cmath>

namespace vornic {

namespace {

constexpr double fallPerSecond = 20; ///< dB
constexpr double holdSeconds = 1.5;
/// A sample as large as this is at its limit, or has been put there.
constexpr double clipping = -0.05; ///< dBFS

} // namespace

void LevelBallistics::update(double peak, double seconds)
{
    const double now = peak > 0 ? std::clamp(20 * std::log10(peak), lowest, 0.0) : lowest;
    m_level = std::max({ now, m_level - fallPerSecond * seconds, lowest });
    m_heldFor += seconds;
    if (now < m_held && m_heldFor < holdSeconds)
        return;
    if (now >= m_held)
        m_heldFor = 0;
    m_held = std::max(now, m_level);
}

bool LevelBallistics::isClipping() const
{
    return m_held >= clipping;
}

} // namespace vornic
