#pragma once

#include "controls/skin_painting.h"

#include <QRectF>
#include <QSize>
#include <QString>

class QAbstractButton;

namespace vornic {

/// What check boxes and radio buttons have in common: a square picture with a title to its right.

/// What tells the two kinds apart.
struct ToggleSkin {
    const char *name = nullptr; ///< "check" or "radio", of the pictures
    double pictureSide = 0;     ///< in points
    double focusRadius = 0;     ///< of the picture's corners
};

/// What such a button shows; enough to paint it without a widget.
struct ToggleLook {
    QRectF imagePosition;
    QRectF textPosition;
    QString picture;
    SkinText title;
    bool hasFocus = false;
    double focusRadius = 0;
};

/// \a name is "check" or "radio".
[[nodiscard]] QString togglePicture(const QString &name, bool on, bool enabled, bool mouseButtonIsDown);

[[nodiscard]] QRectF toggleImagePosition(const QRectF &frame, double side);
[[nodiscard]] QRectF toggleTextPosition(const QRectF &frame, double side);

/// \a button now, in \a frame. Looks pressed while the mouse button is down anywhere, not only on this control.
[[nodiscard]] ToggleLook
toggleLook(QAbstractButton &button, const QRectF &frame, const ToggleSkin &skin, bool on);
/// Where a click counts: from the picture to the end of the title, over the whole height.
[[nodiscard]] QRectF toggleHitRect(const QAbstractButton &button, const ToggleSkin &skin);
[[nodiscard]] QSize toggleSize(const QAbstractButton &button, const ToggleSkin &skin);

void paintToggle(QPainter &painter, const ToggleLook &look);

} // namespace vornic
