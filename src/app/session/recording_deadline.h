#pragma once

#include <QObject>
#include <QTimer>

#include <chrono>

namespace vornic {

class RecordingSession;

/// Ends a recording whose own clock cannot, because that has not begun or began without the sound that it waited for.
///
/// Made by RecordingSession for each recording that has a length; lives on the main thread. From the first picture on
/// the recording's clock ends it, so that what was waited for sound does not count. Sound that never comes prolongs
/// nothing: the time counts from the start then. But it has three seconds to come, and so has the first picture. While the
/// recording is paused no time passes.
class RecordingDeadline : public QObject
{
public:
    /// Borrows \a session for life, before the capture of its recording begins.
    RecordingDeadline(RecordingSession &session, double seconds);

    [[nodiscard]] double seconds() const { return m_seconds; }

    /// The recording was as long as it was to be.
    [[nodiscard]] bool isReached() const { return m_isReached; }

private:
    using Clock = std::chrono::steady_clock;

    void begin();
    void firstPictureIsKept();
    void endAt(Clock::time_point time);
    void followPause();
    void look();

    RecordingSession &m_session;
    double m_seconds;
    Clock::duration m_length;
    Clock::time_point m_start;
    Clock::time_point m_end;
    Clock::duration m_left { 0 }; ///< while it is paused
    bool m_beganWithSound = false;
    bool m_endsByTimer = true; ///< not where a first picture came as it was to
    QTimer m_timer;
    bool m_isReached = false;
};

} // namespace vornic
