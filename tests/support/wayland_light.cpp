#include "support/screen_light.h"
#include "support/wayland_painter.h"

#include <QColor>

#include <memory>

namespace vornic::test {

ScreenLight waylandLight()
{
    const std::shared_ptr<WaylandPainter> painter = WaylandPainter::start();
    QImage black(40, 30, QImage::Format_RGB32); // which the compositor makes as large as the monitor
    black.fill(Qt::black);
    if (!painter || !painter->show(black))
        return {};
    return [=, number = 0](bool isWhite) mutable {
        QImage picture = black;
        if (isWhite)
            picture.fill(Qt::white);
        picture.setPixelColor(0, 0, QColor::fromHsv(++number * 37 % 360, 255, 200));
        static_cast<void>(painter->show(picture));
    };
}

} // namespace vornic::test
