#include "app/system_version.h"

#include <QVersionNumber>

namespace vornic {

bool isVersionAbove(const QString &version, int major, int minor)
{
    const QVersionNumber number = QVersionNumber::fromString(version);
    return number.majorVersion() > major || (number.majorVersion() == major && number.minorVersion() > minor);
}

} // namespace vornic
