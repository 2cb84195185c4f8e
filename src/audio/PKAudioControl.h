#pragma once

#include "audio/audio_control.h"
#include "audio/audio_device_table.h"

#include <QByteArray>

#include <memory>
#include <vector>

struct pa_source_info;

namespace vornic {

class PKAudioRecorder;
class PulseConnection;

/// The desktop's audio inputs: microphones, and the monitors of outputs, which give what the system plays.
///
/// sharedAudioControl() is the process's own, made at its first use; tests make others. Used on the main thread;
/// the sound server's events are handled on a thread of its own. Without a server there are no devices; when it
/// comes back, its devices do too.
class PKAudioControl final : public AudioControl
{
public:
    [[nodiscard]] static PKAudioControl &sharedAudioControl();

    /// Connects to \a server, or to the desktop's own when it is empty.
    explicit PKAudioControl(const QByteArray &server = {});
    ~PKAudioControl() override;

    [[nodiscard]] bool hasSystemSound() override;
    [[nodiscard]] bool isSystemSound(std::uint32_t deviceID) override;
    [[nodiscard]] bool isMonitor(std::uint32_t deviceID) override;
    /// Waits for the server's first answer, a second at most since the control was made.
    [[nodiscard]] QStringList inputDevicesName() override;
    [[nodiscard]] std::uint32_t deviceIDFromName(const QString &name) override;
    void setDelegate(PKAudioControlDelegate *delegate) override;
    [[nodiscard]] std::unique_ptr<AudioRecorder> createRecorder(std::uint32_t deviceID) override;

    /// The server's own name of a device, for PKAudioRecorder; empty when there is none. Under a Lock of
    /// connection().
    [[nodiscard]] QByteArray sourceOf(std::uint32_t deviceID) const { return m_table.sourceOf(deviceID); }
    /// Whether the device is there now. Under a Lock of connection().
    [[nodiscard]] bool isThere(std::uint32_t deviceID) const { return m_table.isThere(deviceID); }
    /// Borrows a recorder, which is told whenever the list of devices has been read; until it is removed. Both under a
    /// Lock of connection().
    void addRecorder(PKAudioRecorder &recorder);
    void removeRecorder(PKAudioRecorder &recorder);
    [[nodiscard]] PulseConnection &connection() { return *m_connection; }

private:
    struct Announcement;

    void serverChanged();
    void subscribe();
    void readDevices();
    void takeSource(const pa_source_info &source);
    void takeList();
    void devicesChanged();

    double m_deadline; ///< of the wait for the first answer, absolute clock

    // On the connection's thread, or under its lock.
    AudioDeviceTable m_table;
    std::vector<AudioInputFacts> m_arriving; ///< of the answer that is coming in
    QByteArray m_defaultSource;
    QByteArray m_defaultOutput;
    std::vector<PKAudioRecorder *> m_recorders;
    bool m_hasAnswer = false;
    bool m_isReading = false;
    bool m_readsAgain = false; ///< something changed while an answer was coming in

    std::shared_ptr<Announcement> m_announcement;  ///< main thread only
    std::unique_ptr<PulseConnection> m_connection; ///< last: its thread ends before what it uses
};

} // namespace vornic
