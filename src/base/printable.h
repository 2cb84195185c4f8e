#pragma once

#include <QString>

namespace vornic {

/// \a text for one line of a terminal: what would end the line, move the cursor, turn the reading direction around or
/// is no character at all is written out, as "\n", "\x1b" or "\u202e". From any thread.
[[nodiscard]] QString printable(const QString &text);

} // namespace vornic
