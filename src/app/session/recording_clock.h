#pragma once

#include "base/clock.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <limits>
#include <mutex>
#include <optional>
#include <vector>

namespace vornic {

/// The time of one recording: what o'clock it is, since when its timestamps count, and when they stood still.
///
/// Part of a Recording. The capture queue and the sound's thread set the origin, each its own; the main thread pauses; any
/// thread reads.
class RecordingClock
{
public:
    /// Seconds of the absolute clock, from any thread.
    using Now = std::function<double()>;
    /// What timestamps count from.
    enum class Origin {
        FirstPass,  ///< the start of the first capture pass
        FirstSound, ///< the first sample of the sound
    };

    /// A time that is recorded, or not, in seconds of the absolute clock.
    struct Span {
        double begin = 0;
        double end = 0;
    };

    explicit RecordingClock(Origin origin, Now now = absoluteTimeSeconds);

    /// From the origin on no more than this is recorded: from then on the clock stands for good. Before it is shared.
    void setLength(double seconds) { m_length = seconds; }
    /// All that is to be recorded has been.
    [[nodiscard]] bool isOver() const;

    [[nodiscard]] double now() const { return m_now(); }
    /// Only the first of each counts.
    void passBegins(double seconds) { setOnce(m_firstPass, seconds); }
    void soundBegins(double seconds) { setOnce(m_firstSound, seconds); }
    /// There will be no sound after all: timestamps count from the first pass.
    void dropSound() { m_origin = Origin::FirstPass; }
    /// The user does not want to wait for the sound any longer: timestamps count from now.
    void goOnWithoutSound();
    [[nodiscard]] bool awaitsSound() const { return m_origin == Origin::FirstSound; }

    /// What follows is not recorded, until resume(). A second call changes nothing, and neither does a resume() alone.
    void pause();
    void resume();
    [[nodiscard]] bool isPaused() const;
    /// Not all that lies behind \a seconds is recorded.
    [[nodiscard]] bool wasPausedSince(double seconds) const;
    /// What is recorded of the time from \a begin to \a end, as far as is known now; in order.
    [[nodiscard]] std::vector<Span> recordedPartsOf(double begin, double end) const;

    /// The first sample of the sound; not a number before it has come.
    [[nodiscard]] double beginOfSound() const { return m_firstSound; }
    /// How much is recorded of the time from \a begin to \a end; less than nothing where that lies before.
    [[nodiscard]] double recordedSeconds(double begin, double end) const;
    /// Now in PKTimebase ticks of recorded time from the origin, truncated toward zero; nothing while that is not known.
    [[nodiscard]] std::optional<std::int64_t> timestamp() const;

private:
    [[nodiscard]] double origin() const;
    [[nodiscard]] double end() const;
    static void setOnce(std::atomic<double> &time, double seconds);

    Now m_now;
    std::atomic<Origin> m_origin;
    std::atomic<double> m_firstPass;                           ///< not a number: it has not been
    std::atomic<double> m_firstSound;                          ///< not a number: it has not been
    double m_length = std::numeric_limits<double>::infinity(); ///< seconds
    mutable std::mutex m_mutex;                                ///< guards the one below
    std::vector<Span> m_pauses; ///< in order; the last one has no end while it lasts
};

} // namespace vornic
