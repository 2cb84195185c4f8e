#pragma once

#include "app/session/silence_watch.h"
#include "audio/PKAudioRecorderDelegate.h"
#include "base/serial_queue.h"

#include <QObject>
#include <QString>

#include <cstdint>
#include <memory>

namespace vornic {

class AudioControl;
class AudioRecorder;

/// Listens to an input while nothing is recorded, so that its level can be shown: the input is open for as long as
/// somebody wants that, and no longer.
///
/// Made and owned by the application delegate; lives on the main thread. The input is opened and closed on a queue,
/// because a sound server that hangs takes its time.
class LevelWatch : public QObject, private PKAudioRecorderDelegate
{
    Q_OBJECT
public:
    /// Borrows \a control for life; null: there is nothing to listen to.
    explicit LevelWatch(AudioControl *control);
    ~LevelWatch() override;

    /// Opens the input of that name, in place of the one that is open; empty: closes it.
    void listenTo(const QString &name);
    /// Closes the input before this returns: it is to be recorded.
    void close();
    /// Empty: none is open.
    [[nodiscard]] const QString &device() const { return m_device; }

signals:
    /// The loudest sample of the last hundredths of a second; from another thread.
    void heard(double peak);
    /// For ten seconds there was nothing but digital silence, of a microphone; once for each that is listened to.
    void nothingHeard(const QString &name);

private:
    void dataRecord(AudioRecorder &recorder,
                    const void *bytes,
                    std::uint32_t byteCount,
                    const AudioStreamBasicDescription &format) override;
    void open(std::uint32_t deviceID);

    AudioControl *m_control;
    QString m_device;
    QString m_toldOf;
    bool m_isMicrophone = false;
    std::unique_ptr<AudioRecorder> m_recorder; ///< on the queue
    SilenceWatch m_silence;                    ///< on the recorder's thread
    SerialQueue m_queue { "vornic levels" };   ///< last: its thread ends before what it uses
};

} // namespace vornic
