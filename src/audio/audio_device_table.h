#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <map>
#include <vector>

namespace vornic {

/// One input as the sound server describes it.
struct AudioInputFacts {
    QByteArray source;    ///< the server's own name, the same whenever the device is there
    QString description;  ///< what the desktop's mixer shows
    bool isMonitor;       ///< records what an output plays
    QByteArray output {}; ///< the server's name of that output
};

/// Gives the inputs their order, their IDs and unique names.
///
/// Owned by PKAudioControl, which guards it.
class AudioDeviceTable
{
public:
    /// Takes the inputs in the server's order, and the names of its defaults. True when the list that is shown has
    /// changed.
    bool update(std::vector<AudioInputFacts> inputs,
                const QByteArray &defaultSource,
                const QByteArray &defaultOutput = {});

    /// The default input first, then microphones, then monitors.
    [[nodiscard]] QStringList names() const;
    /// 0 when no input has that name.
    [[nodiscard]] std::uint32_t idOf(const QString &name) const;
    /// The server's name of an input that is or was there; empty for any other number. For
    /// AudioControl::systemSoundID that of the default output's monitor, the last one where there is none now.
    [[nodiscard]] QByteArray sourceOf(std::uint32_t id) const;
    /// Whether it records what an output plays.
    [[nodiscard]] bool isMonitor(std::uint32_t id) const;
    /// Whether the input is there now.
    [[nodiscard]] bool isThere(std::uint32_t id) const;

private:
    struct Device {
        QByteArray source;
        QString name;
        bool isMonitor = false;

        friend bool operator==(const Device &, const Device &) = default;
    };
    [[nodiscard]] QString distinctName(const AudioInputFacts &input, const std::vector<Device> &taken) const;

    std::vector<Device> m_devices;
    QByteArray m_systemSource;                 ///< the monitor of the default output; empty before the first
    std::map<QByteArray, std::uint32_t> m_ids; ///< of every source that was ever there
};

} // namespace vornic
