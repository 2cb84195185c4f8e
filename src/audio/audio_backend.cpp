#include "audio/audio_backend.h"

#include "audio/PKAudioControl.h"
#include "audio/fake_audio_control.h"
#include "audio/null_audio_control.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace vornic {

namespace {

/// The shared control is not owned: it lives as long as the process.
std::shared_ptr<AudioControl> createPulse()
{
    return { std::shared_ptr<void>(), &PKAudioControl::sharedAudioControl() };
}

std::shared_ptr<AudioControl> createFake()
{
    return std::make_shared<FakeAudioControl>();
}

std::shared_ptr<AudioControl> createNone()
{
    return std::make_shared<NullAudioControl>(QCoreApplication::translate(
        "vornic", "Sound is switched off by the environment variable VORNIC_AUDIO."));
}

constexpr std::array backendTable {
    AudioBackendEntry { "pulse", true, createPulse },
    AudioBackendEntry { "fake", false, createFake },
    AudioBackendEntry { "none", false, createNone },
};

QString listOfIds()
{
    QStringList ids;
    for (const AudioBackendEntry &entry : backendTable)
        ids += QString::fromUtf8(entry.id.data(), static_cast<qsizetype>(entry.id.size()));
    return ids.join(QStringLiteral(", "));
}

const std::shared_ptr<AudioControl> &chosenAudioControl()
{
    static const std::shared_ptr<AudioControl> chosen = createAudioControl(qgetenv("VORNIC_AUDIO"));
    return chosen;
}

} // namespace

std::span<const AudioBackendEntry> audioBackends()
{
    return backendTable;
}

std::shared_ptr<AudioControl> createAudioControl(const QByteArray &id)
{
    const auto isWanted = [&id](const AudioBackendEntry &entry) {
        return id.isEmpty() ? entry.selectedByItself : entry.id == id.toStdString();
    };
    const auto entry = std::ranges::find_if(backendTable, isWanted);
    if (entry != backendTable.end())
        return entry->create();
    return std::make_shared<NullAudioControl>(
        QCoreApplication::translate("vornic",
                                    "VORNIC_AUDIO names the sound backend \"%1\", but there are only: %2.")
            .arg(QString::fromUtf8(id), listOfIds()));
}

AudioControl &mainAudioControl()
{
    return *chosenAudioControl();
}

QString noAudioReason()
{
    const auto *none = dynamic_cast<const NullAudioControl *>(chosenAudioControl().get());
    return none ? none->reason() : QString();
}

} // namespace vornic
