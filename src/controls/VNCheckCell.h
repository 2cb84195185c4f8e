#pragma once

#include <QCheckBox>
#include <QRectF>

namespace vornic {

/// A check box drawn from pictures; its behaviour is the toolkit's.
///
/// Made by whoever builds a window, as a child of it; main thread only. Frames are in points, in the
/// coordinates of the painter.
class VNCheckCell : public QCheckBox
{
    Q_OBJECT
public:
    static constexpr double pictureSide = 14;

    using QCheckBox::QCheckBox;

    [[nodiscard]] static QRectF calcImagePosition(const QRectF &frame);
    [[nodiscard]] static QRectF calcTextPosition(const QRectF &frame);
    /// A mixed state looks off. Looks pressed while the mouse button is down anywhere, not only on this
    /// control.
    void drawWithFrame(const QRectF &frame, QPainter &view);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    [[nodiscard]] bool hitButton(const QPoint &position) const override;
};

} // namespace vornic
