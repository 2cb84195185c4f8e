#include "codec/movie_failure.h"

#include "codec/av_support.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <cerrno>

namespace vornic {

QString writingFailureSentence(const QString &filename, int error)
{
    const QString folder = QFileInfo(filename).path();
    switch (AVUNERROR(error)) {
    case ENOSPC:
    case EDQUOT:
        return QCoreApplication::translate("vornic",
                                           "The disk is full: the movie could not be written to %1.")
            .arg(filename);
    case EFBIG:
        return QCoreApplication::translate(
                   "vornic",
                   "The movie has grown larger than a file may be there: it could not be written to %1.")
            .arg(filename);
    case EACCES:
    case EPERM:
    case EROFS:
        return QCoreApplication::translate("vornic",
                                           "You have no permission to write movies to the folder %1.")
            .arg(folder);
    case ENOENT:
    case ENOTDIR:
        return QCoreApplication::translate("vornic", "The folder %1 does not exist.").arg(folder);
    default:
        return QCoreApplication::translate("vornic", "The movie could not be written to %1: %2.")
            .arg(filename, avErrorText(error));
    }
}

} // namespace vornic
