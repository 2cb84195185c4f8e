#include "app/window/help_document.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace vornic {

QString helpDocument()
{
    const QString folder = QCoreApplication::applicationDirPath();
    // Beside the installed program, and in the build folder, where programs stand in src/app.
    for (const char *place : { "/../share/vornic/Help.pdf", "/../../share/vornic/Help.pdf" }) {
        if (QString path = folder + QLatin1String(place); QFileInfo(path).isFile())
            return path;
    }
    return {};
}

} // namespace vornic
