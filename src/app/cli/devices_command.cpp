#include "app/cli/devices_command.h"

#include "audio/audio_backend.h"
#include "audio/audio_control.h"

#include <QCoreApplication>

#include <cstdio>

namespace vornic {

int runDevicesCommand()
{
    QString reason = noAudioReason();
    const QStringList names = reason.isEmpty() ? mainAudioControl().inputDevicesName() : QStringList();
    if (reason.isEmpty() && names.isEmpty())
        reason = QCoreApplication::translate("vornic",
                                             "There is no audio input device; is the sound server running?");
    if (!reason.isEmpty()) {
        std::fprintf(stderr, "vornic: %s\n", reason.toLocal8Bit().constData());
        return 1;
    }
    std::printf("%s\n", names.join(u'\n').toLocal8Bit().constData());
    return 0;
}

} // namespace vornic
