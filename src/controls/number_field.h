#pragma once

#include <QDoubleSpinBox>
#include <QRectF>

namespace vornic {

/// Where a field for a number has its text field, and its pair of arrows, in points with y down.
[[nodiscard]] QRectF numberTextRect(const QRectF &frame);
[[nodiscard]] QRectF numberStepperRect(const QRectF &frame);

/// A text field for a number with a stepper beside it.
///
/// Made by whoever builds a window, as a child of it; main thread only. The toolkit's spin box, whose editor
/// is a VNTextFieldCell and whose arrows are a VNStepperCell's. What is typed counts when the user presses
/// Enter or leaves; anything but a number in the range is replaced by the last valid one. The wheel steps only with the
/// keyboard focus, so that scrolling over the field changes nothing.
class NumberField : public QDoubleSpinBox
{
    Q_OBJECT
public:
    explicit NumberField(QWidget *parent = nullptr);

    /// Wide enough for the longest number of the range.
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
};

} // namespace vornic
