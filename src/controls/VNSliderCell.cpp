#include "controls/VNSliderCell.h"

#include "controls/mouse_button.h"
#include "controls/painted_control_access.h"
#include "controls/skin_painting.h"
#include "controls/skin_pictures.h"
#include "controls/skin_style.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace vornic {

namespace {

constexpr double knobSide = 18;
constexpr double trackHeight = 5;
constexpr double capWidth = 4;
constexpr double knobBorder = 4; ///< what the knob covers at the height of the track, besides its margin
constexpr int defaultHeight = 20;
constexpr int minWidth = 60;
constexpr int defaultWidth = 160;

QString variant(const char *name, bool isEnabled)
{
    return QLatin1String(name) + (isEnabled ? QLatin1String(".png") : QLatin1String("Disable.png"));
}

} // namespace

QRectF sliderKnobLeftRect(const QRectF &bar, double fraction)
{
    return { bar.x(), bar.y(), (bar.width() - knobSide) * fraction, bar.height() };
}

QRectF sliderKnobRightRect(const QRectF &bar, double fraction)
{
    const double left = (bar.width() - knobSide) * fraction;
    return { bar.x() + left, bar.y(), bar.width() - left, bar.height() };
}

QRectF sliderKnobRect(const QRectF &bar, double fraction)
{
    return { sliderKnobRightRect(bar, fraction).topLeft(), QSizeF(knobSide, bar.height()) };
}

void paintSliderBar(QPainter &painter, const QRectF &bar, const SliderLook &look)
{
    const double y = bar.y() + (bar.height() - trackHeight) / 2;
    const auto draw = [&](const char *name, double x, double width) {
        drawSkinPicture(painter, variant(name, look.isEnabled), { x, y, width, trackHeight });
    };
    draw("sliderTrackLeft", bar.x(), capWidth);
    draw("sliderTrackRight", bar.right() - capWidth, capWidth);
    draw("sliderTrackCenter", bar.x() + capWidth, bar.width() - 2 * capWidth);

    const QRectF filled = sliderKnobLeftRect(bar, look.fraction);
    if (filled.width() - 1 > 0) {
        draw("sliderTrackInLeft", filled.x(), capWidth);
        draw("sliderTrackInCenter", filled.x() + capWidth, filled.width() + knobBorder - capWidth);
    }
}

void paintSliderKnob(QPainter &painter, const QRectF &knobRect, const SliderLook &look)
{
    // One point down: the picture has the knob's shadow below it, and the knob itself is centred on the track.
    const QRectF picture(knobRect.x() + (knobRect.width() - knobSide) / 2,
                         knobRect.y() + (knobRect.height() - knobSide) / 2 + 1,
                         knobSide,
                         knobSide);
    const bool isDown = look.isEnabled && look.mouseButtonIsDown;
    drawSkinPicture(painter,
                    isDown ? QStringLiteral("sliderTickDown.png") : variant("sliderTick", look.isEnabled),
                    picture);
    if (look.hasFocus)
        drawFocusOutline(painter, picture.adjusted(1, 0, -1, -2), knobSide / 2 - 1);
}

VNSliderCell::VNSliderCell(QWidget *parent)
    : QSlider(Qt::Horizontal, parent)
{
    PaintedControlAccess::install();
    setStyle(SkinStyle::shared());
    setLayoutDirection(Qt::LeftToRight);
    connect(this, &QSlider::valueChanged, this, &VNSliderCell::doubleValueChanged);
}

void VNSliderCell::setValueRange(double minValue, double maxValue, double step)
{
    m_step = step;
    setRange(qRound(minValue / step), qRound(maxValue / step));
}

void VNSliderCell::setDoubleValue(double value)
{
    // Beyond the range of an int there is only the end of the slider.
    const double position = std::round(std::clamp(value, minValue(), maxValue()) / m_step);
    setValue(static_cast<int>(position));
}

double VNSliderCell::fraction() const
{
    const double range = maxValue() - minValue();
    return range > 0 ? (sliderPosition() * m_step - minValue()) / range : 0;
}

QRectF VNSliderCell::getKnobLeftRect(const QRectF &bar) const
{
    return sliderKnobLeftRect(bar, fraction());
}

QRectF VNSliderCell::getKnobRightRect(const QRectF &bar) const
{
    return sliderKnobRightRect(bar, fraction());
}

QRectF VNSliderCell::knobRect() const
{
    return sliderKnobRect(rect(), fraction());
}

void VNSliderCell::drawKnob(const QRectF &knobRect, QPainter &view)
{
    paintSliderKnob(view,
                    knobRect,
                    { .fraction = fraction(),
                      .isEnabled = isEnabled(),
                      .mouseButtonIsDown = paintsMouseButtonDown(*this),
                      .hasFocus = hasFocus() });
}

void VNSliderCell::drawBarInside(const QRectF &bar, bool /*flipped*/, QPainter &view)
{
    paintSliderBar(view, bar, { .fraction = fraction(), .isEnabled = isEnabled() });
}

void VNSliderCell::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    drawBarInside(rect(), true, painter);
    drawKnob(knobRect(), painter);
}

void VNSliderCell::mousePressEvent(QMouseEvent *event)
{
    // A press beside the knob brings it there, and then drags it.
    if (event->button() == Qt::LeftButton && !knobRect().contains(event->position())) {
        const int x = qRound(event->position().x() - knobSide / 2);
        setSliderPosition(
            QStyle::sliderValueFromPosition(minimum(), maximum(), x, width() - static_cast<int>(knobSide)));
        if (!knobRect().contains(event->position()))
            return; // the steps are too coarse to bring the knob under the mouse
    }
    QSlider::mousePressEvent(event);
}

QSize VNSliderCell::sizeHint() const
{
    return { defaultWidth, defaultHeight };
}

QSize VNSliderCell::minimumSizeHint() const
{
    return { minWidth, defaultHeight };
}

} // namespace vornic
