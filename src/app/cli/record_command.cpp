#include "app/cli/record_command.h"

#include "app/cli/command_line_front_end.h"
#include "app/cli/display_claim.h"
#include "app/cli/exit_status.h"
#include "app/cli/run_session.h"
#include "app/cli/telling.h"
#include "app/session/audio_device_list.h"
#include "app/session/audio_input.h"
#include "app/session/left_behind.h"
#include "app/session/output_check.h"
#include "app/session/recording.h"
#include "app/session/recording_session.h"
#include "app/session/time_text.h"
#include "audio/audio_backend.h"
#include "audio/audio_control.h"
#include "base/free_space.h"
#include "base/native_path.h"
#include "base/printable.h"
#include "capture/spool/VNBufferMgr.h"
#include "display/display_backend.h"
#include "options/VNOption.h"

#include <QCoreApplication>

#include <algorithm>
#include <memory>

namespace vornic {

namespace {

QString gibibytes(std::uint64_t bytes)
{
    return QStringLiteral("%1 GiB").arg(static_cast<double>(bytes) / (1U << 30U), 0, 'f', 1);
}

QString whyTooLittleSpace(bool ignoreLowSpace)
{
    const QString folder = VNBufferMgr::cachePath();
    const std::uint64_t freeBytes = freeSpaceBytes(folder);
    if (freeBytes < VNBufferMgr::limitSpaceForRecord())
        return QCoreApplication::translate(
                   "vornic", "A recording stops when less than %1 is free for it in %2, and only %3 is.")
            .arg(gibibytes(VNBufferMgr::limitSpaceForRecord()), folder, gibibytes(freeBytes));
    if (freeBytes < VNBufferMgr::freeSpaceRequired() && !ignoreLowSpace)
        return QCoreApplication::translate(
                   "vornic",
                   "A recording needs %1 free in %2, and only %3 is; --ignore-low-space records all "
                   "the same, until %4 is left.")
            .arg(gibibytes(VNBufferMgr::freeSpaceRequired()),
                 folder,
                 gibibytes(freeBytes),
                 gibibytes(VNBufferMgr::limitSpaceForRecord()));
    return {};
}

QString whyNoSound(const CommandLine &line)
{
    if (!line.hasSound())
        return {};
    if (QString reason = noAudioReason(); !reason.isEmpty())
        return reason;
    const QStringList devices = mainAudioControl().inputDevicesName();
    if (devices.isEmpty())
        return QCoreApplication::translate("vornic",
                                           "There is no audio input device; is the sound server running?");
    if (line.systemAudio && !mainAudioControl().hasSystemSound())
        return QCoreApplication::translate("vornic", "There is no output whose sound could be recorded.");
    return {};
}

/// Also by a name as "vornic devices" lists it, with its control characters written out; -1: it is not there.
qsizetype indexOfDevice(const QStringList &names, const QString &wanted)
{
    if (const qsizetype index = names.indexOf(wanted); index >= 0)
        return index;
    const auto found = std::ranges::find(names, wanted, printable);
    return found == names.end() ? -1 : found - names.begin();
}

bool isDeviceThere(const CommandLine &line)
{
    return !line.audio || line.audioDevice.isEmpty()
        || indexOfDevice(mainAudioControl().inputDevicesName(), line.audioDevice) >= 0;
}

/// One a line.
void tellOfDevices(const CommandLine &line, CommandLineFrontEnd &frontEnd)
{
    frontEnd.alertError(
        QCoreApplication::translate("vornic", "There is no audio input device \"%1\". Available devices:")
            .arg(line.audioDevice));
    for (const QString &name : mainAudioControl().inputDevicesName())
        tell(QStringLiteral("  ") + name);
}

/// Everything that can be known to go wrong before the display's user is asked for it.
QString whyNotRecord(const CommandLine &line)
{
    if (QString reason = noDisplayReason(); !reason.isEmpty())
        return reason;
    if (QString reason = whyNoSound(line); !reason.isEmpty())
        return reason;
    if (QString reason = whyNoMovieCanBeWritten(line.file); !reason.isEmpty())
        return reason;
    if (isThere(line.file) && !line.overwrite)
        return QCoreApplication::translate("vornic", "%1 exists; --overwrite replaces it.").arg(line.file);
    if (QString reason = whyNothingCanBeSpooled(); !reason.isEmpty())
        return reason;
    return whyTooLittleSpace(line.ignoreLowSpace);
}

/// The display's size may be known only once it is ready to be recorded.
QString whyNoSuchRegion(const CommandLine &line)
{
    const QSize display = mainDisplay()->mainDisplaySize();
    if (line.region && !line.region->intersects(QRect(QPoint(0, 0), display)))
        return QCoreApplication::translate(
                   "vornic", "The region %1,%2,%3,%4 lies off the display, which has %5x%6 pixels.")
            .arg(line.region->x())
            .arg(line.region->y())
            .arg(line.region->width())
            .arg(line.region->height())
            .arg(display.width())
            .arg(display.height());
    return {};
}

std::unique_ptr<VNOption> optionsFrom(const CommandLine &line)
{
    auto options = std::make_unique<VNOption>();
    options->setRecordQuality(static_cast<int>(line.quality));
    options->setEnableAudio(line.hasSound());
    options->setRecordsSystemSound(line.systemAudio);
    if (line.region) {
        options->setIsRecordFullScreen(false);
        options->setSelectedRect(VNOption::convertScreenRectFromQuartz(QRectF(*line.region)));
    }
    return options;
}

void chooseAudioDevice(AudioInput &input, const CommandLine &line)
{
    AudioDeviceList &list = input.devices();
    const qsizetype index = indexOfDevice(list.titles(), line.audioDevice);
    if (line.audio && index >= 0) {
        list.setIndexOfSelected(index);
        input.selAudioDevice();
    }
}

/// What was asked for and is not in the movie, one sentence each.
QStringList whatIsMissing(const CommandLine &line, const RecordingSession &session, bool wasAskedToEnd)
{
    const bool endedAsAsked
        = session.recording().isTimeOver || session.recording().sizeIsReached || wasAskedToEnd;
    QStringList sentences;
    if (line.hasSound() && session.counts().audioSeconds == 0)
        sentences += QCoreApplication::translate("vornic", "No sound came: the movie has none.");
    if (line.durationSeconds && !endedAsAsked)
        sentences += QCoreApplication::translate(
                         "vornic", "The movie is shorter than %1 s: the recording ended earlier.")
                         .arg(secondsText(*line.durationSeconds));
    if (session.recording().isTooLarge)
        sentences += QCoreApplication::translate("vornic", "The movie is larger than it was to be.");
    return sentences;
}

} // namespace

int runRecordCommand(const CommandLine &line)
{
    CommandLineFrontEnd frontEnd(line);
    if (const QString reason = whyNotRecord(line); !reason.isEmpty()) {
        frontEnd.alertError(reason);
        return exit_status::failed;
    }
    if (!isDeviceThere(line)) {
        tellOfDevices(line, frontEnd);
        return exit_status::failed;
    }
    const DisplayClaim display(frontEnd);
    if (!display.isGranted())
        return exit_status::failed;
    if (const QString reason = whyNoSuchRegion(line); !reason.isEmpty()) {
        frontEnd.alertError(reason);
        return exit_status::failed;
    }
    cleanUpLeftBehind();
    const std::unique_ptr<VNOption> options = optionsFrom(line);
    RecordingSession session(frontEnd.frontEnd(), *options, line.hasSound() ? &mainAudioControl() : nullptr);
    session.wishes().usesInput = line.audio;
    session.wishes().separateTracks = line.separateTracks;
    chooseAudioDevice(session.audioInput(), line);
    session.wishes().length = line.durationSeconds;
    session.wishes().maxSize = line.maxSize;
    const int status = runSession(session, frontEnd, [&session] { session.recorded(); });
    if (status == exit_status::failed)
        return status;
    const QStringList missing = whatIsMissing(line, session, frontEnd.movie().isAskedToEnd());
    for (const QString &sentence : missing)
        frontEnd.alertError(sentence);
    return missing.isEmpty() ? status : exit_status::incomplete;
}

} // namespace vornic
