#pragma once

#include <QColor>
#include <QFont>
#include <QRectF>
#include <QString>

class QPainter;
class QWidget;

namespace vornic {

/// Painting that several controls share. All leave the painter as it was.

/// One line of text.
struct SkinText {
    QString text;
    QFont font;
    QColor color;
    bool hasShadow = true;     ///< black, one point below
    int flags = Qt::AlignLeft; ///< horizontal alignment, and Qt::TextShowMnemonic or Qt::TextHideMnemonic
    Qt::TextElideMode elision = Qt::ElideRight; ///< where an ellipsis stands for what is too long
};

/// Vertically centred in \a rectangle; what is too long gets an ellipsis.
void drawSkinText(QPainter &painter, const QRectF &rectangle, const SkinText &text);

/// How wide drawSkinText() draws it, where there is room.
[[nodiscard]] double skinTextWidth(const SkinText &text);

/// Whether drawSkinText() has to leave some of it out in \a width.
[[nodiscard]] bool isSkinTextElided(const SkinText &text, double width);

/// Whether the text of \a control shows its mnemonic, as one of SkinText's flags.
[[nodiscard]] int mnemonicFlag(const QWidget &control);

/// A picture of 4 x 28 at the left end of \a frame, then \a middle, stretched over all but the last
/// \a rightWidth points.
void drawFieldLeft(QPainter &painter, const QRectF &frame, bool enabled, double rightWidth);

/// Shows that the keyboard goes here: a line of 2 points inside the edge of \a shape.
void drawFocusOutline(QPainter &painter, const QRectF &shape, double radius);

} // namespace vornic
