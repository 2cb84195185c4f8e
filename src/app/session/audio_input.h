#pragma once

#include "app/session/silence_watch.h"
#include "app/session/sound_choice.h"
#include "audio/PKAudioControlDelegate.h"
#include "audio/PKAudioRecorderDelegate.h"

#include <QObject>
#include <QStringList>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <stop_token>

namespace vornic {

class AudioControl;
class AudioDeviceList;
class AudioRecorder;
class MixedRecorder;
class PKMuxerContext;
class VNBufferMgr;
struct AudioStreamBasicDescription;
struct Recording;

/// The sound of the recordings: the list of devices, the recorder, and the chunks on their way into the spool.
///
/// Owned by RecordingSession; lives on the main thread. What a recorder tells comes on the
/// recorder's thread, endCapture() on the capture queue.
class AudioInput : public QObject, public PKAudioControlDelegate, public PKAudioRecorderDelegate
{
    Q_OBJECT
public:
    /// Fills the list of devices and follows their coming and going. Borrows both for life; without a \a control there
    /// are no devices.
    AudioInput(VNBufferMgr &spool, AudioControl *control);
    ~AudioInput() override;

    [[nodiscard]] AudioDeviceList &devices() { return *m_devices; }
    [[nodiscard]] bool hasDevices() const;
    /// The number of the device that the list shows; 0 when it is not there.
    [[nodiscard]] std::uint32_t currentAudioID();
    /// Made at the first call; null without a control.
    [[nodiscard]] AudioRecorder *audioRecorder();
    /// The user has chosen a device in the list.
    void selAudioDevice();

    /// Of the recordings that begin from now on.
    void setChoice(const SoundChoice &choice) { m_choice = choice; }

    /// What comes from now on belongs to \a recording.
    void adopt(std::shared_ptr<Recording> recording);
    /// Starts the recorder for the adopted recording and enters what it delivers into \a context; without usable
    /// sound the recording goes on without. Blocks for a few seconds at most.
    void start(PKMuxerContext &context);
    void stop();
    /// Stops the recorder at the end of the capture, unless it is still being started: then stop() does.
    void endCapture();

    void audioControlInputDeviceChanged(AudioControl &control) override;
    void dataRecord(AudioRecorder &recorder,
                    const void *bytes,
                    std::uint32_t byteCount,
                    const AudioStreamBasicDescription &format) override;
    void soundWasLost(AudioRecorder &recorder) override;
    void soundCameBack(AudioRecorder &recorder) override;

signals:
    /// The input of the recording that runs is gone (true), or there again.
    void soundIsLost(bool isLost);
    /// Of two sounds, the one of that name is gone while the other is heard (true), or there again.
    void oneSoundIsLost(const QString &name, bool isLost);
    /// The loudest sample of the last hundredths of a second of the recording that runs, as a share of the loudest that
    /// there is.
    void levelHeard(double peak);
    /// For ten seconds the microphone of that name has given nothing but digital silence; once a recording.
    void nothingHeard(const QString &name);
    /// Devices have come or gone.
    void devicesChanged();

private:
    void addDevices(const QStringList &names);
    [[nodiscard]] bool isSeparate() const { return m_choice.separate && m_choice.input && m_choice.system; }
    [[nodiscard]] AudioRecorder *recorderOfChoice();
    [[nodiscard]] MixedRecorder *mixedRecorder();
    void setPartsOf(MixedRecorder &mixed);
    [[nodiscard]] QStringList soundNames() const;
    void tellOfLoss(bool isLost);
    void inputHeard(double peak, double seconds);
    void tell(const std::function<void()> &what);
    [[nodiscard]] std::shared_ptr<Recording> recording() const;

    VNBufferMgr &m_spool;
    AudioControl *m_control;
    std::unique_ptr<AudioDeviceList> m_devices;
    SoundChoice m_choice;
    QString m_microphone;   ///< the input that is recorded; empty where it is a monitor, which may be silent
    SilenceWatch m_silence; ///< on the thread of the chunks
    std::unique_ptr<AudioRecorder> m_recorder; ///< of the input alone
    std::unique_ptr<MixedRecorder> m_mixed;    ///< of input and system; null before it is needed
    /// The recorder, once it has started: what the capture queue stops. Null where the recording has no sound.
    std::atomic<AudioRecorder *> m_startedRecorder = nullptr;
    std::stop_source m_gone;                ///< requested at the end: what is queued comes too late
    mutable std::mutex m_mutex;             ///< guards the one below; held for a copy only
    std::shared_ptr<Recording> m_recording; ///< the one that sound belongs to; null before the first
};

} // namespace vornic
