#pragma once

#include <QRectF>
#include <QString>

namespace vornic {

/// Why a recording ended by itself, for its user; in the user's language, from any thread.

/// One sentence, right after the display gave no picture of \a rectangle, in screen coordinates (y up); a null one is the
/// full display. Asks the display.
[[nodiscard]] QString whyNoPicture(const QRectF &rectangle);
/// What \a error, a number of the system's, means for the recording's files: one sentence without a full stop. Empty for 0
/// and where it is the space.
[[nodiscard]] QString whySpoolingFailed(int error);
/// How to go on with the recording \a id, which has no movie: a whole line of the program's.
[[nodiscard]] QString recordingKeptLine(const QString &id);

} // namespace vornic
