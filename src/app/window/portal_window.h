#pragma once

#include <QString>

class QWidget;

namespace vornic {

/// How the desktop's portals name \a window, above which a dialog of theirs is to stand; empty where they know no name for
/// it: on Wayland it would have to be made by a protocol of its own. \a platform: the toolkit's, as "xcb".
[[nodiscard]] QString portalNameOf(const QWidget *window, const QString &platform);

} // namespace vornic
