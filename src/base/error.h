#pragma once

#include <QString>

namespace vornic {

/// Why something could not be done, as far as it matters for what is done next.
enum class ErrorKind {
    Unavailable,      ///< this system lacks it: trying again does not help
    Unsupported,      ///< there is no such thing: a mistake of the caller
    PermissionDenied, ///< another place may do
    ReadOnlyVolume,   ///< another place may do
    FolderMissing,    ///< another place may do
    DiskFull,         ///< another place may do
    FileTooLarge,     ///< for the file system: another place may do
    NotAFile,         ///< what stands there is a pipe, a socket or a device: another place may do
    OthersFile,       ///< what stands there only another user can replace: another place may do
    OutOfMemory,      ///< trying again later may help
    Incomplete,       ///< what was written does not hold what was put in: trying again may help
    Cancelled,        ///< as was asked for: it may be done later
    Empty,            ///< there is nothing to work on
    Failed,           ///< anything else; the reason is all that is known
};

/// What an Error happened to.
enum class ErrorSubject {
    File, ///< the movie's
    MovieFormat,
    VideoEncoder,
    AudioEncoder,
    Recording,
};

/// What went wrong, for errorText() to make a sentence of; a plain value.
///
/// Made where it is found out, on any thread. It holds no text that would have to be translated.
struct Error {
    ErrorKind kind = ErrorKind::Failed;
    ErrorSubject subject = ErrorSubject::File;
    QString name;   ///< of the subject: the file's path, or what was asked for; may be empty
    QString reason; ///< in the words of the system or the library, without a full stop; may be empty
};

} // namespace vornic
