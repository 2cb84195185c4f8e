#include "controls/record_button.h"

#include "controls/button_painting.h"
#include "controls/skin_colors.h"

#include <QFontInfo>
#include <QPainter>

namespace vornic {

namespace {

constexpr ButtonMetrics metrics { .height = 44, .minWidth = 160, .margin = 24, .gap = 10, .radius = 6 };
constexpr double discSide = 14;
constexpr double squareRadius = 2;
constexpr double larger = 1.2;

} // namespace

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

void RecordButton::setStops(bool stops)
{
    m_stops = stops;
    update();
}

QFont RecordButton::largeFont() const
{
    QFont large = font();
    large.setBold(true);
    large.setPixelSize(qRound(QFontInfo(large).pixelSize() * larger));
    return large;
}

void RecordButton::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    paintButtonFace(painter,
                    *this,
                    { skin::recordFace(), skin::recordFaceOver(), skin::recordFaceDown() },
                    metrics.radius);
    const SkinText text = buttonLabel(*this, largeFont());
    const ButtonContents contents = buttonContents(rect(), metrics, discSide, skinTextWidth(text));
    drawSkinText(painter, contents.text, text);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(text.color);
    if (m_stops)
        painter.drawRoundedRect(contents.picture.adjusted(1, 1, -1, -1), squareRadius, squareRadius);
    else
        painter.drawEllipse(contents.picture);
}

QSize RecordButton::sizeHint() const
{
    return buttonSize(metrics, discSide, buttonLabel(*this, largeFont()));
}

QSize RecordButton::minimumSizeHint() const
{
    return sizeHint();
}

} // namespace vornic
