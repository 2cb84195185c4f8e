#include "controls/VNTextFieldCell.h"

#include "controls/skin_colors.h"
#include "controls/skin_painting.h"
#include "controls/skin_pictures.h"
#include "controls/skin_style.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace vornic {

namespace {

constexpr double capWidth = 4;
constexpr double textMargin = 8;
constexpr double focusRadius = 4;
constexpr int minWidth = 44;

/// The line in the middle of \a rectangle, on whole points as the toolkit's editor has it, so that the text
/// stands still when editing begins.
QRectF textLine(const QRectF &rectangle, const QFont &font)
{
    const double below = std::floor((rectangle.height() - QFontMetrics(font).height() + 1) / 2);
    return { rectangle.x(), rectangle.y() + below, rectangle.width(), QFontMetricsF(font).height() };
}

} // namespace

QRectF textFieldTextRect(const QRectF &frame)
{
    return { frame.x() + textMargin, frame.y(), frame.width() - 2 * textMargin, frame.height() };
}

VNTextFieldCell::VNTextFieldCell(QWidget *parent)
    : QLineEdit(parent)
{
    setStyle(SkinStyle::shared());
    setPalette(skinPalette());
    setFixedHeight(skinFieldHeight);
}

void VNTextFieldCell::drawWithFrame(const QRectF &frame, QPainter &view)
{
    const bool enabled = isEnabled();
    drawFieldLeft(view, frame, enabled, capWidth);
    drawSkinPicture(view,
                    enabled ? QStringLiteral("editright.png") : QStringLiteral("editrightdisable.png"),
                    { frame.right() - capWidth, frame.y(), capWidth, double(skinFieldHeight) });
    if (isEdited()) {
        drawFocusOutline(view, frame, focusRadius);
        return;
    }
    const Qt::Alignment horizontal
        = QStyle::visualAlignment(layoutDirection(), alignment()) & Qt::AlignHorizontal_Mask;
    drawSkinText(view,
                 textLine(textFieldTextRect(frame), font()),
                 { .text = displayText(),
                   .font = font(),
                   .color = enabled ? skin::value() : skin::disabledValue(),
                   .flags = static_cast<int>(horizontal) });
}

void VNTextFieldCell::paintEvent(QPaintEvent *event)
{
    {
        QPainter painter(this);
        drawWithFrame(rect(), painter);
    }
    // The toolkit's editor paints the text while it is edited, and the hint while there is no text.
    if (isEdited() || displayText().isEmpty())
        QLineEdit::paintEvent(event);
}

QSize VNTextFieldCell::sizeHint() const
{
    return { std::max(QLineEdit::sizeHint().width(), minimumSizeHint().width()), skinFieldHeight };
}

QSize VNTextFieldCell::minimumSizeHint() const
{
    const double hint = skinTextWidth({ .text = placeholderText(), .font = font(), .color = {} });
    return { std::max(minWidth, static_cast<int>(hint + 2 * textMargin)), skinFieldHeight };
}

} // namespace vornic
