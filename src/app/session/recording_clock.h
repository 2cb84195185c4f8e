#pragma once

#include "base/clock.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>

namespace vornic {

/// The time of one recording: what o'clock it is, and since when its timestamps count.
///
/// Part of a Recording. The capture queue and the sound's thread set the origin, each its own; any thread reads.
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

    explicit RecordingClock(Origin origin, Now now = absoluteTimeSeconds);

    [[nodiscard]] double now() const { return m_now(); }
    /// Only the first of each counts.
    void passBegins(double seconds) { setOnce(m_firstPass, seconds); }
    void soundBegins(double seconds) { setOnce(m_firstSound, seconds); }
    /// There will be no sound after all: timestamps count from the first pass.
    void dropSound() { m_origin = Origin::FirstPass; }
    /// The user does not want to wait for the sound any longer: timestamps count from now.
    void goOnWithoutSound();
    [[nodiscard]] bool awaitsSound() const { return m_origin == Origin::FirstSound; }

    /// Now in PKTimebase ticks from the origin, truncated toward zero; nothing while that is not known.
    [[nodiscard]] std::optional<std::int64_t> timestamp() const;

private:
    static void setOnce(std::atomic<double> &time, double seconds);

    Now m_now;
    std::atomic<Origin> m_origin;
    std::atomic<double> m_firstPass;  ///< not a number: it has not been
    std::atomic<double> m_firstSound; ///< not a number: it has not been
};

} // namespace vornic
