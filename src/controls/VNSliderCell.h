#pragma once

#include <QRectF>
#include <QSlider>

namespace vornic {

/// What a slider shows; enough to paint it without a widget.
struct SliderLook {
    double fraction = 0; ///< of the way from the minimum to the maximum
    bool isEnabled = true;
    bool mouseButtonIsDown = false;
    bool hasFocus = false;
};

/// The part of the track left of the knob, and the rest, for the bar's rectangle in points.
[[nodiscard]] QRectF sliderKnobLeftRect(const QRectF &bar, double fraction);
[[nodiscard]] QRectF sliderKnobRightRect(const QRectF &bar, double fraction);
/// As wide as the knob and as high as the bar.
[[nodiscard]] QRectF sliderKnobRect(const QRectF &bar, double fraction);
void paintSliderBar(QPainter &painter, const QRectF &bar, const SliderLook &look);
void paintSliderKnob(QPainter &painter, const QRectF &knobRect, const SliderLook &look);

/// A horizontal slider drawn from pictures, with the minimum at the left.
///
/// Made by whoever builds a window, as a child of it; main thread only. The toolkit's slider, whose position
/// counts whole steps; what a step is worth makes values in other units of it.
class VNSliderCell : public QSlider
{
    Q_OBJECT
    Q_PROPERTY(double doubleValue READ doubleValue WRITE setDoubleValue NOTIFY doubleValueChanged)
public:
    explicit VNSliderCell(QWidget *parent = nullptr);

    /// What one step of the position is worth; 1 unless set. \a step is above 0.
    void setValueRange(double minValue, double maxValue, double step);
    [[nodiscard]] double minValue() const { return minimum() * m_step; }
    [[nodiscard]] double maxValue() const { return maximum() * m_step; }
    [[nodiscard]] double step() const { return m_step; }
    [[nodiscard]] double doubleValue() const { return value() * m_step; }
    /// Goes to the nearest step within the range.
    void setDoubleValue(double value);

    /// Looks pressed while the mouse button is down anywhere, not only on this control.
    void drawKnob(const QRectF &knobRect, QPainter &view);
    [[nodiscard]] QRectF getKnobLeftRect(const QRectF &bar) const;
    [[nodiscard]] QRectF getKnobRightRect(const QRectF &bar) const;
    /// The track is the same either way up.
    void drawBarInside(const QRectF &bar, bool flipped, QPainter &view);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

signals:
    void doubleValueChanged();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    [[nodiscard]] double fraction() const;
    [[nodiscard]] QRectF knobRect() const;

    double m_step = 1;
};

} // namespace vornic
