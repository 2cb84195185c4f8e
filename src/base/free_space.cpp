#include "base/free_space.h"

#include "base/native_path.h"

#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>

namespace vornic {

namespace {

std::optional<dev_t> volumeOf(const QString &path)
{
    struct stat file {
    };
    if (::stat(nativePath(path).constData(), &file) != 0)
        return std::nullopt;
    return file.st_dev;
}

} // namespace

std::optional<std::uint64_t> freeSpace(const QString &path)
{
    struct statvfs volume {
    };
    if (::statvfs(nativePath(path).constData(), &volume) != 0)
        return std::nullopt;
    return std::uint64_t { volume.f_bavail } * volume.f_frsize;
}

std::uint64_t freeSpaceBytes(const QString &path)
{
    return freeSpace(path).value_or(0);
}

bool areOnOneVolume(const QString &path, const QString &other)
{
    const std::optional<dev_t> volume = volumeOf(path);
    return volume && volume == volumeOf(other);
}

bool liesInMemory(const QString &path)
{
    struct statfs volume {
    };
    if (::statfs(nativePath(path).constData(), &volume) != 0)
        return false;
    const auto type = static_cast<std::uint32_t>(volume.f_type); // signed, of 32 bits on some processors
    return type == TMPFS_MAGIC || type == RAMFS_MAGIC;
}

} // namespace vornic
