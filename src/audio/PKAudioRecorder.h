#pragma once

#include "audio/audio_recorder.h"
#include "base/serial_queue.h"

#include <QByteArray>

#include <memory>

struct pa_operation;
struct pa_stream;

namespace vornic {

class ClockedSound;
class PKAudioControl;
class PulseConnection;

/// Records one input of the sound server, in chunks of 20 to 40 ms.
///
/// Made through the control, which it may not outlive. Samples arrive on the connection's thread; chunks are
/// delivered on a queue of the recorder's own, under no lock, so that a delegate that is slow or that asks the
/// control something holds up no one. The first chunk is 20 ms of silence: it ends at the very moment at which
/// it is delivered, and every frame after it stands where it was captured, whatever the server's latency and however
/// true the device's clock. A device
/// that vanishes is recorded again when it is back; what the system plays is recorded where it is played.
class PKAudioRecorder final : public AudioRecorder
{
public:
    PKAudioRecorder(std::uint32_t deviceID, PKAudioControl &control);
    ~PKAudioRecorder() override;

    void setDelegate(PKAudioRecorderDelegate *delegate) override;
    void setDeviceID(std::uint32_t deviceID) override;
    /// Linear PCM of 8 unsigned or 16 signed bits. False for any other, when the device is not there, or when
    /// the server refuses.
    [[nodiscard]] bool startRecordWithFormat(const AudioStreamBasicDescription &format) override;
    [[nodiscard]] AudioStreamBasicDescription currentDataFormat() const override;
    void stopRecord() override;

    /// The control has read the list of devices: one that was lost may be back. On the connection's thread.
    void devicesListed();

private:
    [[nodiscard]] bool openStream();
    [[nodiscard]] bool connectStream();
    void closeStream();
    void streamChanged();
    void tell(void (PKAudioRecorderDelegate::*what)(AudioRecorder &));
    void read();
    void askForTiming(double now);
    void dropTimingRequest();
    void takeTiming();
    void placeHeld();
    void begin();
    void queuePending();
    void queueChunk(QByteArray chunk);
    [[nodiscard]] std::size_t chunkBytes() const;

    PKAudioControl &m_control;
    PulseConnection &m_connection;

    // Under the connection's lock.
    std::uint32_t m_deviceID;
    PKAudioRecorderDelegate *m_delegate = nullptr;
    AudioStreamBasicDescription m_format;
    pa_stream *m_stream = nullptr;           ///< null: not recording
    QByteArray m_source;                     ///< the server's name of what the stream records
    bool m_isLost = false;                   ///< the stream ended by itself
    bool m_lossIsTold = false;               ///< the delegate was told of it, and not of the sound's return
    std::unique_ptr<ClockedSound> m_sound;   ///< null before the first start
    double m_askedForTiming = 0;             ///< absolute clock; 0: not since the stream was opened
    pa_operation *m_timingRequest = nullptr; ///< null: the server has answered, or was not asked
    bool m_beginsSoon = false;               ///< begin() is queued
    QByteArray m_held;    ///< as the device gave them, until it is known when they were captured
    QByteArray m_pending; ///< of the recording, less than a chunk

    SerialQueue m_deliveries { "vornic chunks" }; ///< last: its thread ends before what it uses
};

} // namespace vornic
