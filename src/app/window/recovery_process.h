#pragma once

class QString;

namespace vornic {

/// Has the movie of the kept recording \a id made by a process of its own, `vornic recover`, which begins once this one
/// has ended, whatever ends it, and needs no display. False where there can be no such process. Any thread.
[[nodiscard]] bool recoverAfterThisProcess(const QString &id);

} // namespace vornic
