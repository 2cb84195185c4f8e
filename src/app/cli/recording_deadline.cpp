#include "app/cli/recording_deadline.h"

#include "app/session/recording_session.h"
#include "base/PKTimebase.h"

#include <algorithm>

namespace vornic {

namespace {

/// The toolkit's timers count their milliseconds in 32 bits.
constexpr std::chrono::hours longestTimer(1);

std::chrono::steady_clock::duration durationOf(double seconds)
{
    return std::chrono::duration_cast<std::chrono::steady_clock::duration>(
        std::chrono::duration<double>(seconds));
}

} // namespace

RecordingDeadline::RecordingDeadline(RecordingSession &session, double seconds)
    : m_session(session)
    , m_seconds(seconds)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &RecordingDeadline::look);
    connect(&session, &RecordingSession::stateChanged, this, [this] {
        if (m_session.isRecording())
            endAt(Clock::now() + durationOf(m_seconds));
        else
            m_timer.stop();
    });
    const auto firstPicture = [this](qint64 ticks) {
        if (!m_session.goesOnWithoutSound())
            endAt(Clock::now()
                  + durationOf(m_seconds - static_cast<double>(ticks) / static_cast<double>(PKTimebase)));
    };
    connect(&session, &RecordingSession::clockTicked, this, firstPicture, Qt::SingleShotConnection);
}

/// Through the event loop even when it is past: the session may be in the middle of its start.
void RecordingDeadline::endAt(Clock::time_point time)
{
    m_end = time;
    const Clock::duration left
        = std::clamp<Clock::duration>(m_end - Clock::now(), Clock::duration::zero(), longestTimer);
    m_timer.start(std::chrono::ceil<std::chrono::milliseconds>(left));
}

void RecordingDeadline::look()
{
    if (m_session.phase() != RecordingSession::Phase::Capturing)
        return; // it has ended by itself
    if (Clock::now() < m_end) {
        endAt(m_end);
        return;
    }
    m_isReached = true;
    m_session.stopWithAPicture();
}

} // namespace vornic
