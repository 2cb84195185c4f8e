#include "app/session/recording_deadline.h"

#include "app/session/recording.h"
#include "app/session/recording_session.h"

#include <algorithm>

namespace vornic {

namespace {

/// The toolkit's timers count their milliseconds in 32 bits.
constexpr std::chrono::hours longestTimer(1);
/// Sound that is waited for takes a second or two where its device has to wake up.
constexpr std::chrono::seconds timeForFirstPicture(3);

std::chrono::steady_clock::duration durationOf(double seconds)
{
    return std::chrono::duration_cast<std::chrono::steady_clock::duration>(
        std::chrono::duration<double>(seconds));
}

} // namespace

RecordingDeadline::RecordingDeadline(RecordingSession &session, double seconds)
    : m_session(session)
    , m_seconds(seconds)
    , m_length(durationOf(seconds))
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &RecordingDeadline::look);
    connect(&session, &RecordingSession::stateChanged, this, [this] {
        if (m_session.isRecording())
            begin();
        else
            m_timer.stop();
    });
    connect(&session, &RecordingSession::pausedChanged, this, &RecordingDeadline::followPause);
    connect(&session,
            &RecordingSession::clockTicked,
            this,
            &RecordingDeadline::firstPictureIsKept,
            Qt::SingleShotConnection);
}

void RecordingDeadline::begin()
{
    m_start = Clock::now();
    m_beganWithSound = m_session.recording().clock.awaitsSound();
    endAt(m_start + std::max<Clock::duration>(m_length, timeForFirstPicture));
}

void RecordingDeadline::firstPictureIsKept()
{
    if (m_beganWithSound && !m_session.recording().clock.awaitsSound()) {
        endAt(m_start + m_length);
        return;
    }
    m_endsByTimer = false; // from here on the recording's clock ends it
    m_timer.stop();
}

/// Through the event loop even when it is past: the session may be in the middle of its start.
void RecordingDeadline::endAt(Clock::time_point time)
{
    m_end = time;
    const Clock::duration left
        = std::clamp<Clock::duration>(m_end - Clock::now(), Clock::duration::zero(), longestTimer);
    m_timer.start(std::chrono::ceil<std::chrono::milliseconds>(left));
}

void RecordingDeadline::followPause()
{
    if (!m_endsByTimer)
        return;
    if (m_session.isPaused()) {
        m_left = m_end - Clock::now();
        m_timer.stop();
    } else if (m_session.phase() == RecordingSession::Phase::Capturing) {
        endAt(Clock::now() + m_left);
    }
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
    m_session.stopRecord();
}

} // namespace vornic
