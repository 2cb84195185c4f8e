#include "app/session/output_check.h"

#include "app/session/error_text.h"
#include "base/native_path.h"
#include "capture/spool/VNBufferMgr.h"
#include "capture/spool/recording_folder.h"
#include "codec/part_file.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryFile>

#include <cerrno>

namespace vornic {

namespace {

/// The reason the system gives, as the end of a sentence; empty when a file can be made in \a folder.
QString whyNotWritable(const QString &folder)
{
    QTemporaryFile probe(QDir(folder).filePath(QStringLiteral(".vornic-probe-XXXXXX")));
    return probe.open() ? QString() : probe.errorString();
}

QString cannotBeWrittenTo(const QString &folder, const QString &reason)
{
    return QCoreApplication::translate("vornic",
                                       "The recording needs the folder %1, which cannot be written to: %2.")
        .arg(folder, reason);
}

} // namespace

QString whyNoMovieCanBeWritten(const QString &path)
{
    if (isFolder(path))
        return QCoreApplication::translate("vornic", "%1 is a folder; the movie needs a file name.")
            .arg(path);
    const std::optional<Error> error = checkFinalName(path);
    if (!error)
        return {};
    const QString folder = QFileInfo(path).absolutePath();
    const ErrorKind kind = error->kind;
    if (kind == ErrorKind::FolderMissing)
        return QCoreApplication::translate("vornic", "The folder %1 does not exist.").arg(folder);
    if (kind == ErrorKind::PermissionDenied || kind == ErrorKind::DiskFull)
        return QCoreApplication::translate("vornic", "The folder %1 cannot be written to: %2.")
            .arg(folder, error->reason);
    if (kind == ErrorKind::Failed)
        return QCoreApplication::translate("vornic", "No movie can be written to %1: %2.")
            .arg(path, error->reason);
    return errorText(*error);
}

QString whyCacheIsRefused()
{
    const QString folder = VNBufferMgr::cachePath();
    if (RecordingFolder::ownsCache(folder) || errno != EPERM)
        return {};
    return QCoreApplication::translate(
               "vornic",
               "The folder %1, where recordings are kept, belongs to another user, or "
               "others can write to it: it is not used.")
        .arg(folder);
}

QString whyNothingCanBeSpooled()
{
    if (QString reason = whyCacheIsRefused(); !reason.isEmpty())
        return reason;
    const QString folder = VNBufferMgr::cachePath();
    if (const QString reason = whyNotWritable(folder); !reason.isEmpty())
        return cannotBeWrittenTo(folder, reason);
    if (!RecordingFolder::prepare(folder))
        return nothingCanBeSpooledText(qt_error_string());
    const QString reason = whyNotWritable(RecordingFolder::pathOfAll(folder));
    return reason.isEmpty() ? QString() : nothingCanBeSpooledText(reason);
}

QString nothingCanBeSpooledText(const QString &reason)
{
    return cannotBeWrittenTo(RecordingFolder::pathOfAll(VNBufferMgr::cachePath()), reason);
}

} // namespace vornic
