#pragma once

#include <QIcon>

namespace vornic {

/// The program's icon, in all sizes that it was drawn for. Needs a QGuiApplication.
[[nodiscard]] QIcon applicationIcon();

} // namespace vornic
