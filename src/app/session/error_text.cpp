#include "app/session/error_text.h"

#include "base/error.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace vornic {

namespace {

QString unavailableText(ErrorSubject subject)
{
    if (subject == ErrorSubject::AudioEncoder)
        return QCoreApplication::translate("vornic", "The AAC audio encoder is missing on this system.");
    return QCoreApplication::translate("vornic",
                                       "The H.264 video encoder (libx264) is missing on this system.");
}

QString unsupportedText(const Error &error)
{
    if (error.subject == ErrorSubject::AudioEncoder)
        return QCoreApplication::translate("vornic", "There is no audio encoder with the number %1.")
            .arg(error.name);
    if (error.subject == ErrorSubject::VideoEncoder)
        return QCoreApplication::translate("vornic", "There is no video encoder with the number %1.")
            .arg(error.name);
    return QCoreApplication::translate("vornic", "There is no movie format with the number %1.")
        .arg(error.name);
}

/// Of the file, by a name that means something wherever it is read.
QString folderOf(const Error &error)
{
    return QDir::cleanPath(QFileInfo(error.name).absolutePath());
}

/// The system, or a library, does not tell one every time.
QString reasonOf(const Error &error)
{
    return error.reason.isEmpty() ? QCoreApplication::translate("vornic", "no reason was given")
                                  : error.reason;
}

QString videoEncoderText(const Error &error)
{
    if (error.name.isEmpty())
        return QCoreApplication::translate("vornic", "The video encoder failed: %1.").arg(reasonOf(error));
    return QCoreApplication::translate("vornic", "The video encoder cannot make a movie of %1 pixels: %2.")
        .arg(error.name, reasonOf(error));
}

QString failedText(const Error &error)
{
    if (error.subject == ErrorSubject::AudioEncoder)
        return QCoreApplication::translate("vornic", "The sound could not be encoded: %1.")
            .arg(reasonOf(error));
    if (error.subject == ErrorSubject::VideoEncoder)
        return videoEncoderText(error);
    return QCoreApplication::translate("vornic", "The movie could not be written to %1: %2.")
        .arg(error.name, reasonOf(error));
}

} // namespace

QString errorText(const Error &error)
{
    switch (error.kind) {
    case ErrorKind::Unavailable:
        return unavailableText(error.subject);
    case ErrorKind::Unsupported:
        return unsupportedText(error);
    case ErrorKind::PermissionDenied:
        return QCoreApplication::translate("vornic",
                                           "You have no permission to write movies to the folder %1.")
            .arg(folderOf(error));
    case ErrorKind::ReadOnlyVolume:
        return QCoreApplication::translate("vornic", "The folder %1 lies on a volume that can only be read.")
            .arg(folderOf(error));
    case ErrorKind::FolderMissing:
        return QCoreApplication::translate("vornic", "The folder %1 does not exist.").arg(folderOf(error));
    case ErrorKind::DiskFull:
        return QCoreApplication::translate("vornic",
                                           "The disk is full: the movie could not be written to %1.")
            .arg(error.name);
    case ErrorKind::FileTooLarge:
        return QCoreApplication::translate("vornic",
                                           "The movie is larger than the file system, or a limit of this "
                                           "session, allows: it could not "
                                           "be written to %1.")
            .arg(error.name);
    case ErrorKind::NotAFile:
        return QCoreApplication::translate("vornic", "%1 is no ordinary file; the movie needs another name.")
            .arg(error.name);
    case ErrorKind::OthersFile:
        return QCoreApplication::translate(
                   "vornic", "%1 belongs to another user, and only that user can replace it in its folder.")
            .arg(error.name);
    case ErrorKind::OutOfMemory:
        return QCoreApplication::translate("vornic", "There is not enough memory to write the movie.");
    case ErrorKind::Incomplete:
        return QCoreApplication::translate("vornic", "The movie that was written to %1 is not whole.")
            .arg(error.name);
    case ErrorKind::Cancelled:
        return QCoreApplication::translate("vornic", "The movie was not made: its writing was ended.");
    case ErrorKind::Empty:
        return QCoreApplication::translate("vornic", "The recording holds no frames.");
    case ErrorKind::Failed:
        break;
    }
    return failedText(error);
}

} // namespace vornic
