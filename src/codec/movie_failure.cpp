#include "codec/movie_failure.h"

#include "codec/av_support.h"

#include <cerrno>

namespace vornic {

namespace {

ErrorKind kindOf(int number)
{
    switch (AVUNERROR(number)) {
    case ENOSPC:
    case EDQUOT:
        return ErrorKind::DiskFull;
    case EFBIG:
        return ErrorKind::FileTooLarge;
    case EACCES:
    case EPERM:
        return ErrorKind::PermissionDenied;
    case EROFS:
        return ErrorKind::ReadOnlyVolume;
    case ENOENT:
    case ENOTDIR:
        return ErrorKind::FolderMissing;
    case AVUNERROR(AVERROR_EXIT):
        return ErrorKind::Cancelled;
    default:
        return ErrorKind::Failed;
    }
}

} // namespace

Error writingError(const QString &filename, int number)
{
    return { kindOf(number), ErrorSubject::File, filename, avErrorText(number) };
}

} // namespace vornic
