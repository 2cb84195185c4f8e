#include "controls/record_button.h"

#include "controls/button_painting.h"
#include "controls/skin_colors.h"
#include "controls/skin_painting.h"

#include <QFontInfo>
#include <QPainter>

namespace vornic {

namespace {

constexpr ButtonMetrics metrics { .height = 44, .leastWidth = 160, .margin = 24, .gap = 10, .radius = 6 };
constexpr double discSide = 14;
constexpr double larger = 1.2;

ButtonFace face(const RecordButtonLook &look)
{
    if (!look.isEnabled)
        return skin::disabledFace();
    if (look.isDown)
        return skin::recordFaceDown();
    return look.isHovered ? skin::recordFaceOver() : skin::recordFace();
}

SkinText label(const RecordButtonLook &look)
{
    return { .text = look.text,
             .font = look.font,
             .color = look.isEnabled ? skin::value() : skin::disabledTitle(),
             .hasShadow = false,
             .flags = Qt::AlignLeft | look.mnemonic };
}

} // namespace

QRectF recordDiscRect(const QRectF &bounds, double textWidth)
{
    return buttonContents(bounds, metrics, discSide, textWidth).picture;
}

void paintRecordButton(QPainter &painter, const QRectF &bounds, const RecordButtonLook &look)
{
    paintButtonFace(painter, bounds, face(look), metrics.radius);
    const SkinText text = label(look);
    const ButtonContents contents = buttonContents(bounds, metrics, discSide, skinTextWidth(text));
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(text.color);
    painter.drawEllipse(contents.picture);
    painter.restore();
    drawSkinText(painter, contents.text, text);
    if (look.hasFocus)
        drawFocusOutline(painter, bounds, metrics.radius);
}

RecordButton::RecordButton(QWidget *parent)
    : RecordButton(QString(), parent)
{
}

RecordButton::RecordButton(const QString &text, QWidget *parent)
    : QPushButton(text, parent)
{
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

RecordButtonLook RecordButton::look() const
{
    QFont large = font();
    large.setBold(true);
    large.setPixelSize(qRound(QFontInfo(large).pixelSize() * larger));
    return { .text = text(),
             .font = large,
             .mnemonic = mnemonicFlag(*this),
             .isEnabled = isEnabled(),
             .isHovered = underMouse(),
             .isDown = isDown() || isChecked(),
             .hasFocus = hasFocus() };
}

void RecordButton::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    paintRecordButton(painter, rect(), look());
}

QSize RecordButton::sizeHint() const
{
    return buttonSize(metrics, discSide, label(look()));
}

QSize RecordButton::minimumSizeHint() const
{
    return sizeHint();
}

} // namespace vornic
