#pragma once

#include <QLabel>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QTimer>

namespace vornic {

/// Where a label of size \a label tells of \a frame: below it, or above, right or left of it, where \a screen has
/// room for it; otherwise inside, at the lower edge that is seen.
[[nodiscard]] QPoint sizeLabelPosition(QSize label, const QRect &frame, const QRect &screen);

/// Tells the size of the rectangle while it is dragged, as "800 × 600".
///
/// Made by VNRecoderWindow; main thread only. No window manager touches it, and it takes neither mouse nor
/// keyboard focus.
class SizeLabel : public QLabel
{
    Q_OBJECT
public:
    SizeLabel();

    /// \a size in device pixels; the rest in the toolkit's logical coordinates. Shown a moment later, so that a
    /// short drag flashes nothing.
    void tell(QSize size, const QRect &frame, const QRect &screen);
    void endTelling();

private:
    QTimer m_soon;
};

} // namespace vornic
