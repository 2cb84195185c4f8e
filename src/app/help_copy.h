#pragma once

#include <QString>

namespace vornic {

/// The path of the copy of the help \a document in the caches folder, made at the first time and never
/// refreshed. Blocks for the disk.
[[nodiscard]] QString helpCopy(const QString &document);

} // namespace vornic
