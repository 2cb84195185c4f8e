#include "overlay/toolkit_platform.h"

#include <QByteArray>

namespace vornic {

namespace {

constexpr const char *choice = "QT_QPA_PLATFORM";

#if defined(VORNIC_X11) && defined(VORNIC_WAYLAND)
constexpr bool knowsBoth = true;
#else
constexpr bool knowsBoth = false;
#endif

bool isInsideBoth()
{
    return knowsBoth && !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
        && !qEnvironmentVariableIsEmpty("DISPLAY");
}

} // namespace

ToolkitPlatform::ToolkitPlatform()
    : m_isChosen(isInsideBoth() && qEnvironmentVariableIsEmpty(choice))
{
    // The second where the X server cannot be used after all.
    if (m_isChosen)
        qputenv(choice, QByteArrayLiteral("xcb;wayland"));
}

ToolkitPlatform::~ToolkitPlatform()
{
    if (m_isChosen)
        qunsetenv(choice);
}

} // namespace vornic
