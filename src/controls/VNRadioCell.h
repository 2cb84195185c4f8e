#pragma once

#include <QRadioButton>
#include <QRectF>

namespace vornic {

/// A radio button drawn from pictures; its behaviour is the toolkit's.
///
/// Made by whoever builds a window, as a child of it; main thread only. Frames are in points, in the
/// coordinates of the painter.
class VNRadioCell : public QRadioButton
{
    Q_OBJECT
public:
    static constexpr double pictureSide = 16;

    using QRadioButton::QRadioButton;

    [[nodiscard]] static QRectF calcImagePosition(const QRectF &frame);
    [[nodiscard]] static QRectF calcTextPosition(const QRectF &frame);
    /// Looks pressed while the mouse button is down anywhere, not only on this control.
    void drawWithFrame(const QRectF &frame, QPainter &view);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    [[nodiscard]] bool hitButton(const QPoint &position) const override;
};

} // namespace vornic
