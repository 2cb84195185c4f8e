#pragma once

#include "display/display_backend.h"

#include <QRect>
#include <QSize>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace vornic {

/// Pixels that the compositor has written, in memory that is lent: four bytes a pixel, rows top to bottom.
struct CastPixels {
    enum class Order { Bgrx, Rgbx }; ///< of the bytes in memory; the fourth is not used

    const uchar *firstRow = nullptr;
    qsizetype bytesPerLine = 0;
    QSize size; ///< as it was written, before it is turned right
    Order order = Order::Bgrx;
    /// How the monitor is turned: quarters counter-clockwise that its pixels were turned by, and 4 more where they were
    /// mirrored before, left to right.
    int transform = 0;
};

/// What a stream says of the pointer.
struct CastPointer {
    bool isVisible = false;
    /// Of the hot spot, on the picture as the user sees it, also where that is written turned.
    QPoint position;
    /// A new shape, which may be none; nothing where it is as before.
    std::optional<std::shared_ptr<const CursorShape>> shape;
};

/// What one buffer of a screen cast holds; a plain value, valid as long as the buffer.
///
/// Made by readCastBuffer(), on the thread of the stream. All in it has been checked.
struct CastFrame {
    std::uint64_t sequence = 0;       ///< counts frames from 1 on; 0 where the compositor does not count them
    std::optional<CastPixels> pixels; ///< nothing where only the pointer has moved
    std::vector<QRect> damage; ///< what has changed since the frame before; empty where that is not told
    std::optional<CastPointer> pointer; ///< nothing where the stream does not tell of it
};

} // namespace vornic
