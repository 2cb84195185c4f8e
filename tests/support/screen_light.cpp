#include "support/screen_light.h"

#include "support/screen_painter.h"

namespace vornic::test {

ScreenLight screenLight()
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
    return [=](bool isWhite) { painter->drawInWindow(window, isWhite ? white : black, { 0, 0 }); };
}

} // namespace vornic::test
