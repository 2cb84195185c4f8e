#pragma once

#include <span>

namespace vornic {

/// Keeps mixed sound within what 16 bits can say: where it would be louder it is turned down at once, and up again
/// within half a second. What is not too loud is left as it is.
///
/// Owned by a MixedRecorder, used on its thread; a plain value.
class PeakLimiter
{
public:
    explicit PeakLimiter(double framesPerSecond);

    /// The next frame, one sample of each channel, in steps of 16 bits. All channels are turned down alike, so that
    /// nothing moves from one side to the other.
    void limit(std::span<float> frame);

private:
    float m_return;   ///< of what the volume lacks, as much comes back in a frame
    float m_gain = 1; ///< at the moment
};

} // namespace vornic
