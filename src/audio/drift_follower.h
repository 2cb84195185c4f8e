#pragma once

namespace vornic {

/// Finds how much faster or slower than the absolute clock a device's clock goes: by how much its sound must be made
/// longer or shorter for what it is early or late by to become nothing, and to stay nothing.
///
/// A proportional and integral control that takes ten seconds for a difference, so that an imprecise measurement
/// changes the pitch as little as the device's clock does. Owned by a CaptureTimeline; a plain value.
class DriftFollower
{
public:
    /// Of \a seconds of sound, the device's next, the first frame is late in the recording by \a error seconds as it
    /// stands: it was captured later than the end of what is there. By how much these seconds are to be made longer,
    /// as a share of them; never by more than a thousandth.
    [[nodiscard]] double follow(double error, double seconds);

private:
    double m_drift = 0; ///< of the device's clock, as a share: what is found so far
};

} // namespace vornic
