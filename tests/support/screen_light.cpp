#include "support/screen_light.h"

#include <QtGlobal>

namespace vornic::test {

ScreenLight screenLight()
{
#ifdef VORNIC_X11
    if (!qEnvironmentVariableIsEmpty("DISPLAY"))
        return x11Light();
#endif
#ifdef VORNIC_WAYLAND
    if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        return waylandLight();
#endif
    return {};
}

ScreenLight screenPatch([[maybe_unused]] const QRect &rectangle)
{
#ifdef VORNIC_X11
    if (!qEnvironmentVariableIsEmpty("DISPLAY"))
        return x11Patch(rectangle);
#endif
    return {};
}

} // namespace vornic::test
