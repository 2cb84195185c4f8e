#include "codec/file_identity.h"

#include "base/native_path.h"

#include <sys/stat.h>

namespace vornic {

FileIdentity::FileIdentity(const struct stat &file)
    : device(file.st_dev)
    , number(file.st_ino)
    , bytes(file.st_size)
    , changedNanoseconds(file.st_mtim.tv_sec * std::int64_t { 1'000'000'000 } + file.st_mtim.tv_nsec)
{
}

std::optional<FileIdentity> identityOfFile(const QString &path)
{
    struct stat file {
    };
    if (::stat(nativePath(path).constData(), &file) != 0)
        return std::nullopt;
    return FileIdentity(file);
}

} // namespace vornic
