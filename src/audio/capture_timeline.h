#pragma once

#include <cstdint>
#include <deque>

namespace vornic {

/// Lays recorded frames end to end on the absolute clock.
///
/// The server answers, now and then and a little imprecisely, which frame is being captured. A recording
/// begins at an instant that is named once; from there on each frame's place is its time: what was captured
/// before is dropped, and where the device lost frames (an overrun, a device put to sleep), silence takes
/// their place.
///
/// Owned by PKAudioRecorder, on its thread. A frame is one sample of every channel; times are seconds of the
/// absolute clock.
class CaptureTimeline
{
public:
    /// What to do with frames before they are used.
    struct Placement {
        std::uint64_t silence = 0; ///< frames to put before them
        std::uint64_t drop = 0;    ///< of the first of them
    };

    explicit CaptureTimeline(double framesPerSecond);

    /// An answer: at \a time, \a frames frames had been captured since the device was opened.
    void hear(double time, double frames);
    /// Frames have come at \a now; after a long pause the answers of before count no more.
    void arrived(double now);
    /// The device was opened again, or another one was.
    void reopened();
    /// There are answers enough to know when frames are captured.
    [[nodiscard]] bool isSettled() const;

    /// The recording begins with frames that are not the device's, of which the first stands at \a time.
    void start(double time, std::uint64_t frames);
    [[nodiscard]] bool hasStarted() const { return m_hasStarted; }
    /// The next frames of the device; only while settled.
    [[nodiscard]] Placement place(std::uint64_t frames);
    /// The next frames of the device are left out: nothing has begun yet.
    void leaveOut(std::uint64_t frames) { m_taken += frames; }

private:
    [[nodiscard]] double medianOffset() const;

    double m_framesPerSecond;
    std::deque<double> m_offsets; ///< when the device's first frame was captured, by each answer
    std::uint64_t m_taken = 0;    ///< frames of the device that were placed or left out
    std::uint64_t m_position = 0; ///< frames in the recording
    double m_start = 0;           ///< of the recording
    double m_lastArrival = 0;     ///< 0: nothing has come since the device was opened
    bool m_hasStarted = false;
    bool m_isAligned = false; ///< frames of the open device have found their place
};

} // namespace vornic
