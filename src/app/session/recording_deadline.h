#pragma once

#include <QObject>
#include <QTimer>

#include <chrono>

namespace vornic {

class RecordingSession;

/// Ends a recording when its time is over, whatever becomes of it.
///
/// Made by "vornic record" for --duration; lives on the main thread. The time counts from the start of the recording,
/// and once more from its first picture, so that waiting for the sound does not eat into it. Sound that never comes
/// prolongs nothing, but it has three seconds to come, and so has the first picture.
/// While the recording is paused no time passes.
class RecordingDeadline : public QObject
{
public:
    /// Borrows \a session for life.
    RecordingDeadline(RecordingSession &session, double seconds);

    /// The recording was as long as it was to be.
    [[nodiscard]] bool isReached() const { return m_isReached; }

private:
    using Clock = std::chrono::steady_clock;

    void begin();
    void firstPictureIsKept(qint64 timestamp);
    void endAt(Clock::time_point time);
    void followPause();
    void look();

    RecordingSession &m_session;
    Clock::duration m_length;
    Clock::time_point m_start;
    Clock::time_point m_end;
    Clock::duration m_left { 0 }; ///< while it is paused
    bool m_beganWithSound = false;
    QTimer m_timer;
    bool m_isReached = false;
};

} // namespace vornic
