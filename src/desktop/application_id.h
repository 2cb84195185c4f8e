#pragma once

#include <QString>

namespace vornic {

/// Names the program to the desktop: desktop file, icon and bus name bear it.
[[nodiscard]] inline QString applicationId()
{
    return QStringLiteral("com.kavlor.vornic");
}

} // namespace vornic
