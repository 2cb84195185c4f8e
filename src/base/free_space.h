#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace vornic {

/// What the file system that holds a path can be asked for. Each blocks for one system call, which may last as long as
/// a server in the network likes; from any thread.

/// Bytes that an ordinary user can still write there; nothing when it cannot be asked.
[[nodiscard]] std::optional<std::uint64_t> freeSpace(const QString &path);
/// The same, but 0 when it cannot be asked.
[[nodiscard]] std::uint64_t freeSpaceBytes(const QString &path);
/// Whether both paths take their space from one file system; false where one cannot be asked. Subvolumes that share
/// their space count as two.
[[nodiscard]] bool areOnOneVolume(const QString &path, const QString &other);
/// Whether what is written there is kept in memory only (tmpfs, ramfs), and gone after a restart.
[[nodiscard]] bool liesInMemory(const QString &path);

} // namespace vornic
