#pragma once

#include "audio/audio_recorder.h"

#include <atomic>
#include <thread>

namespace vornic {

/// Records a fake device: sound that is computed, the same to the bit in every recording.
///
/// Frame n of a recording of the microphone is sample n of a 440 Hz sine (toneLevel) that begins at phase 0, but
/// for a click of one millisecond (clickLevel) in the middle of each second; the monitor is silent, and so is what the system plays.
///
/// Made by FakeAudioControl. A thread of its own delivers chunks of 20 ms. The recording begins at the moment of
/// startRecordWithFormat(); each chunk comes when its last frame is due by the absolute clock, and chunks that
/// are late come at once, so that none is lost and the sound never drifts.
class FakeAudioRecorder final : public AudioRecorder
{
public:
    static constexpr double toneHertz = 440;
    static constexpr double toneLevel = 0.0625; ///< of full scale
    static constexpr double clickLevel = 0.75;  ///< of full scale

    explicit FakeAudioRecorder(std::uint32_t deviceID);
    ~FakeAudioRecorder() override;

    void setDelegate(PKAudioRecorderDelegate *delegate) override { m_delegate = delegate; }
    void setDeviceID(std::uint32_t deviceID) override;
    /// Linear PCM of 16 signed bits, any rate and number of channels. False for any other format, and when the
    /// device is not there.
    [[nodiscard]] bool startRecordWithFormat(const AudioStreamBasicDescription &format) override;
    [[nodiscard]] AudioStreamBasicDescription currentDataFormat() const override { return m_format; }
    void stopRecord() override;

private:
    void deliverChunks(const std::stop_token &stop);

    std::atomic<std::uint32_t> m_deviceID;
    PKAudioRecorderDelegate *m_delegate = nullptr;
    AudioStreamBasicDescription m_format;
    std::stop_source m_stop;
    std::thread m_thread;
};

} // namespace vornic
