#include "display/main_display.h"

#include "display/display_backend.h"
#include "geometry/y_up.h"

namespace vornic {

DisplayPlacement mainDisplayPlacement()
{
    const auto display = mainDisplay();
    return { display->mainDisplaySize(), display->mainDisplayOrigin() };
}

QRectF mainDisplayFrame()
{
    return { QPointF(0, 0), QSizeF(mainDisplay()->mainDisplaySize()) };
}

QPointF pointerLocation()
{
    const auto display = mainDisplay();
    const QPointF middle = QPointF(display->pointerPosition()) + QPointF(0.5, 0.5);
    return flipped(middle, display->mainDisplaySize().height());
}

} // namespace vornic
