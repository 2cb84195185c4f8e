#pragma once

#include <QString>

namespace vornic {

struct Error;

/// One sentence for the user about \a error, in the user's language.
[[nodiscard]] QString errorText(const Error &error);

} // namespace vornic
