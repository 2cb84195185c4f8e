#pragma once

#include <QString>

namespace vornic {

/// The path of the help document that belongs to the running program, installed or not; empty when there is
/// none.
[[nodiscard]] QString helpDocument();

} // namespace vornic
