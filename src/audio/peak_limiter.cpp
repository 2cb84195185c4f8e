#include "audio/peak_limiter.h"

#include <algorithm>
#include <cmath>

namespace vornic {

namespace {

constexpr float loudest = 32767;

/// How long it takes for most of the volume to come back, seconds: longer than a wave, so that none is bent.
constexpr double returnTime = 0.15;

} // namespace

PeakLimiter::PeakLimiter(double framesPerSecond)
    : m_return(static_cast<float>(1 / (returnTime * framesPerSecond)))
{
}

void PeakLimiter::limit(std::span<float> frame)
{
    float peak = 0;
    for (const float sample : frame)
        peak = std::max(peak, std::abs(sample));
    constexpr float almostAll = 0.9999F;
    m_gain += (1 - m_gain) * m_return;
    if (m_gain > almostAll)
        m_gain = 1;
    if (peak * m_gain > loudest)
        m_gain = loudest / peak;
    for (float &sample : frame)
        sample *= m_gain;
}

} // namespace vornic
