#pragma once

#include "controls/skin_painting.h"

#include <QRectF>
#include <QSizeF>
#include <QString>

namespace vornic {

/// What check boxes and radio buttons have in common: a square picture with a title to its right.
struct ToggleLook {
    QRectF imagePosition;
    QRectF textPosition;
    QString picture;
    SkinText title;
    bool hasFocus = false;
    double focusRadius = 0; ///< of the picture's corners
};

/// \a name is "check" or "radio".
[[nodiscard]] QString togglePicture(const QString &name, bool on, bool enabled, bool mouseButtonIsDown);

[[nodiscard]] QRectF toggleImagePosition(const QRectF &frame, double side);
[[nodiscard]] QRectF toggleTextPosition(const QRectF &frame, double side);
/// Where a click counts: from the picture to the end of the title, over the whole height.
[[nodiscard]] QRectF toggleHitRect(const QRectF &frame, double side, double titleWidth);
[[nodiscard]] QSizeF toggleSize(double side, const SkinText &title);

void paintToggle(QPainter &painter, const ToggleLook &look);

} // namespace vornic
