#include "app/window/portal_window.h"

#include <QWidget>

namespace vornic {

QString portalNameOf(const QWidget *window, const QString &platform)
{
    constexpr int hexadecimal = 16;
    return window && platform == QLatin1StringView("xcb")
        ? QStringLiteral("x11:") + QString::number(window->winId(), hexadecimal)
        : QString();
}

} // namespace vornic
