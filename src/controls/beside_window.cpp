#include "controls/beside_window.h"

#include <QScreen>
#include <QWidget>

#include <algorithm>
#include <array>
#include <limits>

namespace vornic {

namespace {

constexpr int gap = 12;

/// \a position, or the nearest at which all of \a size is on \a screen; its upper left corner where it is larger.
QPoint onScreen(QPoint position, const QSize &size, const QRect &screen)
{
    return { std::max(screen.left(), std::min(position.x(), screen.right() + 1 - size.width())),
             std::max(screen.top(), std::min(position.y(), screen.bottom() + 1 - size.height())) };
}

} // namespace

QPoint positionBeside(const QSize &size, const QRect &window, const QRect &screen)
{
    const std::array beside { QPoint(window.right() + 1 + gap, window.top()),
                              QPoint(window.left() - gap - size.width(), window.top()),
                              QPoint(window.left(), window.bottom() + 1 + gap),
                              QPoint(window.left(), window.top() - gap - size.height()) };
    QPoint best;
    qint64 leastCovered = std::numeric_limits<qint64>::max();
    for (const QPoint &position : beside) {
        const QPoint fitted = onScreen(position, size, screen);
        const QRect covered = QRect(fitted, size) & window;
        const qint64 area = qint64(covered.width()) * covered.height();
        if (area < leastCovered) {
            best = fitted;
            leastCovered = area;
        }
    }
    return best;
}

void placeBeside(QWidget &panel, const QWidget &window)
{
    panel.ensurePolished();
    const QSize frame = window.frameGeometry().size() - window.size();
    panel.move(positionBeside(
        panel.sizeHint() + frame, window.frameGeometry(), window.screen()->availableGeometry()));
}

} // namespace vornic
