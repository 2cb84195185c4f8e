#pragma once

#include <QString>

#include <cstdint>

namespace vornic {

/// Bytes that an ordinary user can still write to the file system that holds \a path; 0 when it cannot be
/// asked. Blocks for one system call.
[[nodiscard]] std::uint64_t freeSpaceBytes(const QString &path);

} // namespace vornic
