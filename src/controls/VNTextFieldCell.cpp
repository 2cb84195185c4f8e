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
constexpr double insertionPoint = 2; ///< how wide it is, at most
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
    // The toolkit would draw the hint with its first letter beneath the insertion point.
    QPalette palette = skinPalette();
    palette.setColor(QPalette::PlaceholderText, Qt::transparent);
    palette.setColor(QPalette::Disabled, QPalette::PlaceholderText, Qt::transparent);
    setPalette(palette);
    setFixedHeight(skinFieldHeight);
}

void VNTextFieldCell::drawWithFrame(const QRectF &frame, QPainter &view)
{
    const bool enabled = isEnabled();
    drawFieldLeft(view, frame, enabled, capWidth);
    drawSkinPicture(view,
                    enabled ? QStringLiteral("editright.png") : QStringLiteral("editrightdisable.png"),
                    { frame.right() - capWidth, frame.y(), capWidth, double(skinFieldHeight) });
    if (displayText().isEmpty())
        drawHint(frame, view);
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

void VNTextFieldCell::drawHint(const QRectF &frame, QPainter &view)
{
    const Qt::Alignment horizontal
        = QStyle::visualAlignment(layoutDirection(), alignment()) & Qt::AlignHorizontal_Mask;
    drawSkinText(view,
                 textLine(textFieldTextRect(frame).adjusted(insertionPoint, 0, 0, 0), font()),
                 { .text = placeholderText(),
                   .font = font(),
                   .color = isEnabled() ? skin::title() : skin::disabledTitle(),
                   .hasShadow = false,
                   .flags = static_cast<int>(horizontal) });
}

void VNTextFieldCell::paintEvent(QPaintEvent *event)
{
    {
        QPainter painter(this);
        drawWithFrame(rect(), painter);
    }
    // The toolkit's editor paints the text while it is edited.
    if (isEdited())
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
