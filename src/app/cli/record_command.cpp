#include "app/cli/record_command.h"

#include "app/cli/command_line_front_end.h"
#include "app/cli/run_session.h"
#include "app/session/audio_device_list.h"
#include "app/session/audio_input.h"
#include "app/session/left_behind.h"
#include "app/session/output_check.h"
#include "app/session/recording_session.h"
#include "audio/audio_backend.h"
#include "audio/audio_control.h"
#include "base/PKTimebase.h"
#include "base/free_space.h"
#include "base/native_path.h"
#include "capture/spool/VNBufferMgr.h"
#include "display/display_backend.h"
#include "options/VNOption.h"

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdio>
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
    if (!line.audio)
        return {};
    if (QString reason = noAudioReason(); !reason.isEmpty())
        return reason;
    const QStringList devices = mainAudioControl().inputDevicesName();
    if (devices.isEmpty())
        return QCoreApplication::translate("vornic",
                                           "There is no audio input device; is the sound server running?");
    if (line.audioDevice.isEmpty() || devices.contains(line.audioDevice))
        return {};
    return QCoreApplication::translate("vornic",
                                       "There is no audio input device \"%1\". Available devices:\n  %2")
        .arg(line.audioDevice, devices.join(QStringLiteral("\n  ")));
}

/// Everything that can be known to go wrong before the recording starts.
QString whyNotRecord(const CommandLine &line)
{
    if (QString reason = noDisplayReason(); !reason.isEmpty())
        return reason;
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

std::unique_ptr<VNOption> optionsFrom(const CommandLine &line)
{
    auto options = std::make_unique<VNOption>();
    options->setRecordQuality(static_cast<int>(line.quality));
    options->setEnableAudio(line.audio);
    if (line.region) {
        options->setIsRecordFullScreen(false);
        options->setSelectedRect(VNOption::convertScreenRectFromQuartz(QRectF(*line.region)));
    }
    return options;
}

void chooseAudioDevice(AudioInput &input, const CommandLine &line)
{
    AudioDeviceList &list = input.devices();
    const qsizetype index = list.titles().indexOf(line.audioDevice);
    if (line.audio && index >= 0) {
        list.setIndexOfSelected(index);
        input.selAudioDevice();
    }
}

/// Stops \a session when the clock has run \a seconds: counted from the recording's origin, so that waiting
/// for the sound does not eat into it.
void stopAfter(RecordingSession &session, double seconds)
{
    const auto startTimer = [&session, seconds](qint64 ticks) {
        const double left = seconds - static_cast<double>(ticks) / static_cast<double>(PKTimebase);
        QTimer::singleShot(std::chrono::milliseconds(static_cast<qint64>(std::max(0.0, left) * 1000)),
                           Qt::PreciseTimer,
                           &session,
                           [&session] { session.stopRecord(); });
    };
    QObject::connect(
        &session, &RecordingSession::clockTicked, &session, startTimer, Qt::SingleShotConnection);
}

} // namespace

int runRecordCommand(const CommandLine &line)
{
    CommandLineFrontEnd frontEnd(line);
    if (const QString reason = whyNotRecord(line); !reason.isEmpty()) {
        frontEnd.alertError(reason);
        return 1;
    }
    cleanUpLeftBehind();
    const std::unique_ptr<VNOption> options = optionsFrom(line);
    RecordingSession session(frontEnd.frontEnd(), *options, line.audio ? &mainAudioControl() : nullptr);
    chooseAudioDevice(session.audioInput(), line);
    if (line.durationSeconds)
        stopAfter(session, *line.durationSeconds);
    return runSession(session, frontEnd, [&session] { session.recorded(); });
}

} // namespace vornic
