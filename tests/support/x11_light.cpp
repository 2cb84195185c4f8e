#include "support/screen_light.h"
#include "support/screen_painter.h"

#include <QColor>

namespace vornic::test {

ScreenLight x11Light()
{
    const std::shared_ptr<ScreenPainter> painter = ScreenPainter::connect();
    if (!painter)
        return {};
    QImage black(painter->screenSize(), QImage::Format_RGB32);
    black.fill(Qt::black);
    QImage white(painter->screenSize(), QImage::Format_RGB32);
    white.fill(Qt::white);
    const auto window = painter->showWindow(black, { 0, 0 });
    painter->sync();
    return [=, wasWhite = false, number = 0](bool isWhite) mutable {
        if (isWhite != wasWhite)
            painter->drawInWindow(window, isWhite ? white : black, { 0, 0 });
        wasWhite = isWhite;
        QImage mark(16, 16, QImage::Format_RGB32);
        mark.fill(QColor::fromHsv(++number * 37 % 360, 255, 200));
        painter->drawInWindow(window, mark, { 0, 0 });
    };
}

ScreenLight x11Patch(const QRect &rectangle)
{
    const std::shared_ptr<ScreenPainter> painter = ScreenPainter::connect();
    if (!painter)
        return {};
    QImage black(rectangle.size(), QImage::Format_RGB32);
    black.fill(Qt::black);
    QImage white(rectangle.size(), QImage::Format_RGB32);
    white.fill(Qt::white);
    const auto window = painter->showWindow(black, rectangle.topLeft());
    painter->sync();
    return [=, wasWhite = false](bool isWhite) mutable {
        if (isWhite != wasWhite)
            painter->drawInWindow(window, isWhite ? white : black, { 0, 0 });
        wasWhite = isWhite;
    };
}

} // namespace vornic::test
