#pragma once

#include <QList>
#include <QPoint>
#include <QRect>

#include <optional>

namespace vornic {

class VNOption;

/// Where our windows stand so that they hide nothing of what is recorded. Rectangles are the toolkit's logical
/// coordinates; those of windows include their frames.

[[nodiscard]] bool coversAny(const QRect &window, const QList<QRect> &areas);

/// Where \a window stands wholly within \a available; what is too large shows its upper left.
[[nodiscard]] QPoint placeWithin(const QRect &window, const QRect &available);

/// Where \a window stands within \a available and covers none of \a areas: where it is, if it covers none there,
/// else at the side of them with the most room, as near as it can. Nothing where there is no such place.
[[nodiscard]] std::optional<QPoint>
placeOff(const QRect &window, const QRect &available, const QList<QRect> &areas);

/// What the overlay shows and the user wants to see now: the rectangle that is recorded with the overlay's frame
/// around it, and the logo. Only what lies on the main display; main thread.
[[nodiscard]] QList<QRect> recordedAreas(VNOption &options);

} // namespace vornic
