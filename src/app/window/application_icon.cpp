#include "app/window/application_icon.h"

#include <QString>

namespace vornic {

QIcon applicationIcon()
{
    QIcon icon;
    for (const int side : { 16, 24, 32, 48, 64, 128, 256 })
        icon.addFile(QStringLiteral(":/icons/%1.png").arg(side), { side, side });
    return icon;
}

} // namespace vornic
