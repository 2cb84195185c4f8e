#pragma once

#include "controls/skin_painting.h"

#include <QColor>
#include <QRectF>
#include <QSize>

class QPainter;
class QPushButton;

namespace vornic {

/// What push buttons that are painted without pictures have in common.

/// In points.
struct ButtonMetrics {
    int height = 0; ///< at least; a tall font makes it higher
    int minWidth = 0;
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

/// The faces of a button that can be used.
struct ButtonFaces {
    ButtonFace normal;
    ButtonFace hovered;
    ButtonFace down;
};

/// The face of \a button as it is now, and the outline of the focus where it has it.
void paintButtonFace(QPainter &painter, const QPushButton &button, const ButtonFaces &faces, double radius);

/// The text of \a button in \a font.
[[nodiscard]] SkinText buttonLabel(const QPushButton &button, const QFont &font);

} // namespace vornic
