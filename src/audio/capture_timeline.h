#pragma once

#include "audio/drift_follower.h"

#include <cstdint>
#include <deque>

namespace vornic {

/// Lays recorded frames end to end on the absolute clock.
///
/// The sound server tells several times a second, a little imprecisely, which frame is being captured. start()
/// sets the time at which the recording begins; from then on each frame is placed by the time at which it was
/// captured: what was captured earlier is dropped, and where the device lost frames (an overrun, a device put to
/// sleep), silence takes their place. What its clock is off by is less than that, and is made good little by little.
///
/// Owned by a ClockedSound and guarded like it. A frame is one sample of every channel; times
/// are seconds of the absolute clock.
class CaptureTimeline
{
public:
    /// What to do with frames before they are used.
    struct Placement {
        std::uint64_t silence = 0; ///< frames to put before them
        std::uint64_t drop = 0;    ///< of the first of them
        double stretch = 0; ///< by how much to make what is left longer, as a share; a thousandth at most
    };

    explicit CaptureTimeline(double framesPerSecond);

    /// An answer: at \a time, \a frames frames had been captured since the device was opened.
    void addAnswer(double time, double frames);
    /// Frames have arrived at \a now. After a pause, the answers from before it are forgotten.
    void arrived(double now);
    /// The device was opened again, or another one was.
    void reopened();
    /// Whether there are enough answers to know when frames are captured.
    [[nodiscard]] bool isSettled() const;

    /// The recording begins with frames that are not the device's, of which the first stands at \a time.
    void start(double time, std::uint64_t frames);
    [[nodiscard]] bool hasStarted() const { return m_hasStarted; }
    /// The next frames of the device; only while settled.
    [[nodiscard]] Placement place(std::uint64_t frames);
    /// What place() made of the frames so far, counted: a stretch is not kept to the last frame.
    void setPosition(double frames) { m_position = frames; }
    /// Skips the next frames of the device, before start().
    void leaveOut(std::uint64_t frames) { m_taken += frames; }

private:
    [[nodiscard]] double medianOffset() const;

    double m_framesPerSecond;
    std::deque<double> m_offsets; ///< when the device's first frame was captured, by each answer
    std::uint64_t m_taken = 0;    ///< frames of the device that were placed or left out
    double m_position = 0;        ///< frames in the recording
    DriftFollower m_drift;        ///< of the open device
    double m_start = 0;           ///< of the recording
    double m_lastArrival = 0;     ///< 0: nothing has come since the device was opened
    bool m_hasStarted = false;
    bool m_isAligned = false; ///< frames of the open device have found their place
};

} // namespace vornic
