#pragma once

#include <QString>

namespace vornic {

/// How a desktop's portal writes the key \a portableText, which QKeySequence writes as "Ctrl+Alt+R": "CTRL+ALT+r". Empty
/// for no key, and for one that it has no name for.
[[nodiscard]] QString portalKeyName(const QString &portableText);

} // namespace vornic
