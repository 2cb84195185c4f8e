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

namespace vornic {

namespace {

/// The reason the system gives, as the end of a sentence; empty when a file can be made in \a folder.
QString whyNotWritable(const QString &folder)
{
    QTemporaryFile probe(QDir(folder).filePath(QStringLiteral(".vornic-probe-XXXXXX")));
    return probe.open() ? QString() : probe.errorString();
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

QString whyNothingCanBeSpooled()
{
    QString folder = VNBufferMgr::cachePath();
    QString reason = whyNotWritable(folder);
    if (reason.isEmpty()) {
        const bool isThere = RecordingFolder::prepare(folder);
        reason = isThere ? QString() : qt_error_string();
        folder = RecordingFolder::pathOfAll(folder);
        if (isThere)
            reason = whyNotWritable(folder);
    }
    return reason.isEmpty()
        ? QString()
        : QCoreApplication::translate("vornic",
                                      "The recording needs the folder %1, which cannot be written to: %2.")
              .arg(folder, reason);
}

} // namespace vornic
