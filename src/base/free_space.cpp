#include "base/free_space.h"

#include <QFile>

#include <sys/statvfs.h>

namespace vornic {

std::uint64_t freeSpaceBytes(const QString &path)
{
    struct statvfs volume {
    };
    if (::statvfs(QFile::encodeName(path).constData(), &volume) != 0)
        return 0;
    return std::uint64_t { volume.f_bavail } * volume.f_frsize;
}

} // namespace vornic
