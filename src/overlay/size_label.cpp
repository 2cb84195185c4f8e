#include "overlay/size_label.h"

#include <algorithm>
#include <array>

namespace vornic {

namespace {

constexpr int gap = 6;
constexpr int shownAfterMs = 150;

} // namespace

QPoint sizeLabelPosition(QSize label, const QRect &frame, const QRect &screen)
{
    const QRect seen = frame & screen;
    const auto within = [](int value, int low, int high) { return std::max(low, std::min(value, high)); };
    const int x
        = within(seen.center().x() - label.width() / 2, screen.left(), screen.right() + 1 - label.width());
    const int y
        = within(seen.center().y() - label.height() / 2, screen.top(), screen.bottom() + 1 - label.height());
    const std::array places { QPoint(x, frame.bottom() + 1 + gap),
                              QPoint(x, frame.top() - gap - label.height()),
                              QPoint(frame.right() + 1 + gap, y),
                              QPoint(frame.left() - gap - label.width(), y) };
    for (const QPoint place : places) {
        if (screen.contains(QRect(place, label)))
            return place;
    }
    constexpr int beyondFrame = 16;
    return { x, seen.bottom() + 1 - beyondFrame - label.height() };
}

SizeLabel::SizeLabel()
    : QLabel(nullptr)
{
    setWindowFlags(Qt::Window | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint
                   | Qt::WindowDoesNotAcceptFocus | Qt::WindowTransparentForInput);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_QuitOnClose, false);
    setWindowTitle(tr("Size of the rectangle"));
    setObjectName(QStringLiteral("sizeLabel"));
    m_soon.setSingleShot(true);
    m_soon.setInterval(shownAfterMs);
    connect(&m_soon, &QTimer::timeout, this, &QWidget::show);
    setStyleSheet(QStringLiteral("background: #202020; color: white; padding: 3px 8px;"));
}

void SizeLabel::tell(QSize size, const QRect &frame, const QRect &screen)
{
    setText(QStringLiteral("%1 × %2").arg(size.width()).arg(size.height()));
    adjustSize();
    move(sizeLabelPosition(this->size(), frame, screen));
    if (!isVisible() && !m_soon.isActive())
        m_soon.start();
}

void SizeLabel::endTelling()
{
    m_soon.stop();
    hide();
}

} // namespace vornic
