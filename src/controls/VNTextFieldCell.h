#pragma once

#include <QLineEdit>
#include <QRectF>

namespace vornic {

/// Where a text field has its text, in points; the frame is 28 high.
[[nodiscard]] QRectF textFieldTextRect(const QRectF &frame);

/// A text field drawn from pictures; while it is edited, the toolkit's editor shows the text.
///
/// Made by whoever builds a window, as a child of it; main thread only. Validators, hints and all else are
/// the toolkit's.
class VNTextFieldCell : public QLineEdit
{
    Q_OBJECT
public:
    explicit VNTextFieldCell(QWidget *parent = nullptr);

    void drawWithFrame(const QRectF &frame, QPainter &view);
    /// Nothing: drawWithFrame() draws the text, too.
    void drawInteriorWithFrame(const QRectF & /*frame*/, QPainter & /*view*/) { }
    /// Nothing: the focus shows in the field's own edge.
    void drawFocusRingMaskWithFrame(const QRectF & /*frame*/, QPainter & /*view*/) { }

    [[nodiscard]] QSize sizeHint() const override;
    /// Wide enough for the hint.
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void drawHint(const QRectF &frame, QPainter &view);
    [[nodiscard]] bool isEdited() const { return hasFocus() && isEnabled(); }
};

} // namespace vornic
