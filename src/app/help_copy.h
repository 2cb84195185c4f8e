#pragma once

#include <QString>

namespace vornic {

/// The path of the copy of the help \a document in the caches folder, made at the first time and never
/// refreshed; the document's own where there can be none. Empty where no document is named, or neither is a regular
/// file. Blocks for the disk.
[[nodiscard]] QString helpCopy(const QString &document);

} // namespace vornic
