#pragma once

class QKeyEvent;

namespace vornic {

/// Whether \a event is of a key that presses a well: Space, Select, Enter or Return.
[[nodiscard]] bool isPressKey(const QKeyEvent &event);

} // namespace vornic
