#pragma once

#include <QString>

#include <cstdint>
#include <optional>

struct stat;

namespace vornic {

/// Tells a file from every other that stands at its path later, and from itself once its contents were changed; a
/// plain value.
///
/// Taken where a user agrees that a file is replaced, and held against what is there when it would be. Any thread.
struct FileIdentity {
    FileIdentity() = default;
    explicit FileIdentity(const struct stat &file);

    std::uint64_t device = 0;
    std::uint64_t number = 0;
    std::int64_t bytes = 0;
    std::int64_t changedNanoseconds = 0; ///< since 1970

    bool operator==(const FileIdentity &other) const = default;
};

/// Of the file that \a path leads to, links followed; nothing where there is none.
[[nodiscard]] std::optional<FileIdentity> identityOfFile(const QString &path);

} // namespace vornic
