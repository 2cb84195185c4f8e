#pragma once

#include "audio/AudioStreamBasicDescription.h"
#include "audio/capture_timeline.h"

#include <QByteArray>
#include <QByteArrayView>

#include <cstdint>
#include <functional>
#include <memory>

namespace vornic {

class DriftResampler;

/// Makes of what a device gives a sound that keeps time with the absolute clock: each frame where it was captured, with
/// silence where the device gave none, and stretched where the device's clock is off.
///
/// Made by a PKAudioRecorder for each recording and guarded by its connection's lock.
class ClockedSound
{
public:
    /// Given the sound piece by piece, of a second at most.
    using Sink = std::function<void(const QByteArray &samples)>;

    /// Throws std::runtime_error where \a format is none that can be stretched.
    explicit ClockedSound(const AudioStreamBasicDescription &format);
    ~ClockedSound();

    /// What the server has said of the device's frames; start() is called here, not there.
    [[nodiscard]] CaptureTimeline &timeline() { return m_timeline; }
    [[nodiscard]] const CaptureTimeline &timeline() const { return m_timeline; }

    /// The recording begins with \a frames frames that are not the device's, of which the first stands at \a time.
    void start(double time, std::uint64_t frames);
    /// The next frames of the device, which are whole; only once it is started and while the timeline is settled.
    void place(QByteArrayView captured, const Sink &sink);

private:
    void put(QByteArrayView frames, const Sink &sink);

    AudioStreamBasicDescription m_format;
    CaptureTimeline m_timeline;
    std::unique_ptr<DriftResampler> m_resampler;
    std::uint64_t m_given = 0; ///< frames in the recording
};

} // namespace vornic
