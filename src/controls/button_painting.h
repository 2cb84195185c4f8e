#pragma once

#include <QColor>
#include <QRectF>
#include <QSize>
#include <QString>

class QPainter;

namespace vornic {

struct SkinText;

/// What push buttons that are painted without pictures have in common.

/// In points.
struct ButtonMetrics {
    int height = 0; ///< at least; a tall font makes it higher
    int leastWidth = 0;
    double margin = 0; ///< left and right of the contents, at least
    double gap = 0;    ///< between picture and text
    double radius = 0; ///< of the corners
};

/// A picture, which has no width when there is none, and the text to its right, together in the middle.
struct ButtonContents {
    QRectF picture;
    QRectF text;
};

[[nodiscard]] ButtonContents
buttonContents(const QRectF &bounds, const ButtonMetrics &metrics, double pictureSide, double textWidth);
[[nodiscard]] QSize buttonSize(const ButtonMetrics &metrics, double pictureSide, const SkinText &text);

/// From top to bottom, with a line of one point around.
struct ButtonFace {
    QColor top;
    QColor bottom;
    QColor edge;
};

void paintButtonFace(QPainter &painter, const QRectF &bounds, const ButtonFace &face, double radius);

} // namespace vornic
