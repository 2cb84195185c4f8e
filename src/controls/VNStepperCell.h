#pragma once

#include <QDoubleSpinBox>
#include <QRectF>

namespace vornic {

/// Where the pictures of a stepper are, in points with y up, like \a frame: the up arrow is above the down arrow.
[[nodiscard]] QRectF stepUpPosition(const QRectF &frame);
[[nodiscard]] QRectF stepDownPosition(const QRectF &frame);
/// The same with y down, for painting and for the mouse.
[[nodiscard]] QRectF stepUpRect(const QRectF &frame);
[[nodiscard]] QRectF stepDownRect(const QRectF &frame);
/// \a frame has y down.
void paintStepper(QPainter &painter, const QRectF &frame, bool isEnabled);

/// A pair of arrows drawn from pictures, without a field: the text field beside it shows the value.
///
/// Made by whoever builds a window, as a child of it; main thread only. The toolkit's spin box with its
/// field hidden: range, steps, keyboard, wheel, repetition and what assistive programs read are its own.
class VNStepperCell : public QDoubleSpinBox
{
    Q_OBJECT
public:
    explicit VNStepperCell(QWidget *parent = nullptr);

    /// \a frame has y down, as \a view.
    void drawWithFrame(const QRectF &frame, QPainter &view);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace vornic
