#include "app/cli/devices_command.h"

#include "app/cli/answer.h"
#include "app/cli/exit_status.h"
#include "app/cli/telling.h"
#include "audio/audio_backend.h"
#include "audio/audio_control.h"
#include "base/printable.h"

#include <QCoreApplication>

namespace vornic {

int runDevicesCommand()
{
    QString reason = noAudioReason();
    const QStringList names = reason.isEmpty() ? mainAudioControl().inputDevicesName() : QStringList();
    if (reason.isEmpty() && names.isEmpty())
        reason = QCoreApplication::translate("vornic",
                                             "There is no audio input device; is the sound server running?");
    if (!reason.isEmpty()) {
        tellError(reason);
        return exit_status::failed;
    }
    QString list;
    for (const QString &name : names)
        list += printable(name) + u'\n';
    return answer(list.toUtf8(), exit_status::done, exit_status::failed);
}

} // namespace vornic
