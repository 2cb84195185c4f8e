#pragma once

#include <QString>

#include <cstdint>

namespace vornic {

/// Bytes that a user may still write to the file system holding \a path (statvfs, f_bavail); 0 when it
/// cannot be read. Blocks for one system call.
[[nodiscard]] std::uint64_t freeSpaceBytes(const QString &path);

} // namespace vornic
