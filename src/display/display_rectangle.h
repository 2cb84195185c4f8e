#pragma once

#include <QRect>
#include <QSize>

#include <algorithm>
#include <cstdint>
#include <utility>

namespace vornic {

/// The part of \a rectangle that lies on a display of \a size; empty when none does. Right for the largest
/// rectangles too, whose width no int holds and QRect's own intersection gets wrong.
[[nodiscard]] inline QRect partOnDisplay(const QRect &rectangle, QSize size)
{
    const auto clipped = [](std::int64_t first, std::int64_t last, int limit) {
        const auto from = std::clamp<std::int64_t>(first, 0, limit);
        const auto to = std::clamp<std::int64_t>(last + 1, from, limit);
        return std::pair(static_cast<int>(from), static_cast<int>(to - from));
    };
    const auto [x, width] = clipped(rectangle.left(), rectangle.right(), std::max(size.width(), 0));
    const auto [y, height] = clipped(rectangle.top(), rectangle.bottom(), std::max(size.height(), 0));
    return { x, y, width, height };
}

} // namespace vornic
