#pragma once

#include <QImage>
#include <QRectF>
#include <QString>

class QPainter;

namespace vornic {

/// The pictures that controls are drawn from: resources of the program, each at one pixel a point
/// ("name.png") and at two ("name@2x.png"). Main thread only.

/// How tall text fields, list buttons and colour wells are, in points.
inline constexpr int skinFieldHeight = 28;

/// The picture at \a scale, 1 or 2, pixels a point; null for an unknown name.
[[nodiscard]] QImage skinPicture(const QString &name, int scale);

/// The whole picture into \a rectangle, over what is there, on whole device pixels; nothing for an unknown
/// name. The painter may be scaled and moved, but neither turned nor mirrored.
void drawSkinPicture(QPainter &painter, const QString &name, const QRectF &rectangle);

} // namespace vornic
