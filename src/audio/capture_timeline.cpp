#include "audio/capture_timeline.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace vornic {

namespace {

/// How many answers are kept. Their median is used, so that a single wrong one changes nothing.
constexpr std::size_t maximumAnswers = 15;
constexpr std::size_t answersToSettle = 11;

/// The smallest difference that is taken for a gap, and not for a clock that is off or an imprecise answer, seconds.
constexpr double gap = 0.025;

/// When no frames arrive for this long, the device captures none, seconds.
constexpr double pause = 0.2;

} // namespace

CaptureTimeline::CaptureTimeline(double framesPerSecond)
    : m_framesPerSecond(framesPerSecond)
{
}

void CaptureTimeline::addAnswer(double time, double frames)
{
    m_offsets.push_back(time - frames / m_framesPerSecond);
    if (m_offsets.size() > maximumAnswers)
        m_offsets.pop_front();
}

void CaptureTimeline::arrived(double now)
{
    if (m_lastArrival > 0 && now - m_lastArrival > pause)
        m_offsets.clear();
    m_lastArrival = now;
}

void CaptureTimeline::reopened()
{
    m_offsets.clear();
    m_taken = 0;
    m_lastArrival = 0;
    m_isAligned = false;
    m_drift = {};
}

bool CaptureTimeline::isSettled() const
{
    return m_offsets.size() >= answersToSettle;
}

void CaptureTimeline::start(double time, std::uint64_t frames)
{
    m_start = time;
    m_position = static_cast<double>(frames);
    m_hasStarted = true;
}

double CaptureTimeline::medianOffset() const
{
    std::vector<double> sorted(m_offsets.begin(), m_offsets.end());
    const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
    std::ranges::nth_element(sorted, middle);
    return *middle;
}

CaptureTimeline::Placement CaptureTimeline::place(std::uint64_t frames)
{
    const double captured = medianOffset() + static_cast<double>(m_taken) / m_framesPerSecond;
    const double error = captured - (m_start + m_position / m_framesPerSecond);
    Placement placement;
    if (!m_isAligned || std::abs(error) > gap) {
        const auto wrong = static_cast<std::uint64_t>(std::llround(std::abs(error) * m_framesPerSecond));
        if (error > 0)
            placement.silence = wrong;
        else
            placement.drop = std::min(wrong, frames);
        m_isAligned = placement.drop < frames;
    } else {
        placement.stretch = m_drift.follow(error, static_cast<double>(frames) / m_framesPerSecond);
    }
    m_taken += frames;
    m_position += static_cast<double>(placement.silence)
        + static_cast<double>(frames - placement.drop) * (1 + placement.stretch);
    return placement;
}

} // namespace vornic
