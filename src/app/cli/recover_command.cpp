#include "app/cli/recover_command.h"

#include "app/cli/answer.h"
#include "app/cli/command_line_front_end.h"
#include "app/cli/exit_status.h"
#include "app/cli/run_session.h"
#include "app/cli/telling.h"
#include "app/session/left_behind.h"
#include "app/session/new_movie_file.h"
#include "app/session/recording_session.h"
#include "app/session/time_text.h"
#include "base/PKTimebase.h"
#include "base/native_path.h"
#include "base/printable.h"
#include "capture/spool/VNBufferMgr.h"
#include "capture/spool/stored_recordings.h"
#include "options/VNOption.h"

#include <QCoreApplication>
#include <QLocale>

#include <algorithm>

namespace vornic {

namespace {

int fail(CommandLineFrontEnd &frontEnd, const QString &sentence)
{
    frontEnd.alertError(sentence);
    return exit_status::failed;
}

QString sizeOf(const StoredRecording &recording)
{
    return QLocale().formattedDataSize(static_cast<qint64>(recording.bytes), 1);
}

QString startOf(const StoredRecording &recording)
{
    return recording.start.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

QString lengthOf(const StoredRecording &recording)
{
    return stringFromeTimestamp(static_cast<std::int64_t>(recording.seconds * PKTimebase));
}

/// In columns: a list is read from the top down.
QString listed(const StoredRecording &recording)
{
    const QString size = sizeOf(recording).rightJustified(9);
    if (!recording.isReadable)
        return QCoreApplication::translate("vornic", "%1  %2  cannot be read").arg(recording.id, size);
    return QCoreApplication::translate("vornic", "%1  %2  %3  %4  %5 frames")
        .arg(recording.id, startOf(recording), lengthOf(recording), size)
        .arg(recording.frames);
}

int list(const QList<StoredRecording> &recordings)
{
    QString text;
    for (const StoredRecording &recording : recordings)
        text += printable(listed(recording)) + u'\n';
    // Not where a script reads the list.
    if (recordings.isEmpty())
        tellError(QCoreApplication::translate("vornic", "There is no unfinished recording."));
    return answer(text.toUtf8(), exit_status::done, exit_status::failed);
}

/// The recordings that \a line means: also by the beginning of an id, but what is deleted is called by its whole name.
QList<StoredRecording> meantBy(const CommandLine &line, QList<StoredRecording> recordings)
{
    recordings.removeIf([&line](const StoredRecording &recording) {
        return line.deletes ? recording.id != line.recording : !recording.id.startsWith(line.recording);
    });
    return recordings;
}

QString tooManyText(const QList<StoredRecording> &recordings, const QString &begin)
{
    QStringList ids;
    for (const StoredRecording &recording : recordings)
        ids += recording.id;
    return QCoreApplication::translate("vornic", "Several recordings begin with %1: %2.")
        .arg(begin, ids.join(QStringLiteral(", ")));
}

int deleteRecording(const StoredRecording &recording, CommandLineFrontEnd &frontEnd)
{
    QString whyNot;
    if (!deleteStoredRecording(VNBufferMgr::cachePath(), recording.id, whyNot))
        return fail(frontEnd, whyNot);
    const QString told = recording.isReadable
        ? QCoreApplication::translate("vornic", "Deleted the recording %1: %2 from %3.")
              .arg(recording.id, lengthOf(recording), startOf(recording))
        : QCoreApplication::translate("vornic", "Deleted the recording %1, which could not be read.")
              .arg(recording.id);
    return answer(printable(told).toUtf8() + '\n', exit_status::done, exit_status::failed);
}

int makeMovie(const StoredRecording &recording, const CommandLine &line, CommandLineFrontEnd &frontEnd)
{
    const QString file
        = line.file.isEmpty() ? movieFileFor(recording.movie, recording.start.toLocalTime()) : line.file;
    if (isThere(file) && !line.overwrite)
        return fail(frontEnd,
                    QCoreApplication::translate("vornic", "%1 exists; --overwrite replaces it.").arg(file));
    VNOption options;
    RecordingSession session(frontEnd.frontEnd(), options, nullptr);
    return runSession(session, frontEnd, [&] { session.recover(recording.id, file, line.otherQuality); });
}

} // namespace

int runRecoverCommand(const CommandLine &line)
{
    cleanUpLeftBehind();
    const QList<StoredRecording> all = storedRecordings(VNBufferMgr::cachePath());
    if (line.recording.isEmpty())
        return list(all);
    CommandLineFrontEnd frontEnd(line);
    const QList<StoredRecording> meant = meantBy(line, all);
    if (meant.size() > 1)
        return fail(frontEnd, tooManyText(meant, line.recording));
    // What is not listed may still run: whoever opens it says so.
    StoredRecording recording;
    recording.id = line.recording;
    if (!meant.isEmpty())
        recording = meant.first();
    return line.deletes ? deleteRecording(recording, frontEnd) : makeMovie(recording, line, frontEnd);
}

} // namespace vornic
