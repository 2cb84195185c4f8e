#pragma once

#include <QString>

namespace vornic {

/// What is being handled in a catch block, for the end of a sentence and without a full stop: in the user's language for
/// a lack of memory, in the system's words for what it refused. Any thread.
[[nodiscard]] QString textOfHandledException();

} // namespace vornic
