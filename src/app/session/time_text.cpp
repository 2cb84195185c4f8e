#include "app/session/time_text.h"

#include "base/PKTimebase.h"

#include <QCoreApplication>
#include <QLocale>

namespace vornic {

QString stringFromeTimestamp(std::int64_t timestamp)
{
    const std::int64_t seconds = timestamp / PKTimebase;
    const std::int64_t hours = seconds / 3600;
    const std::int64_t minutes = (seconds - hours * 3600) / 60;
    return QString::asprintf("%02lld:%02lld:%02lld",
                             static_cast<long long>(hours),
                             static_cast<long long>(minutes),
                             static_cast<long long>(seconds - hours * 3600 - minutes * 60));
}

QString timeLeftText(std::int64_t seconds)
{
    return QCoreApplication::translate("vornic", "%1 left").arg(stringFromeTimestamp(seconds * PKTimebase));
}

QString timeLeftInWords(std::int64_t seconds)
{
    const std::int64_t minutes = seconds / 60;
    if (seconds == 1)
        return QCoreApplication::translate("vornic", "1 second left");
    if (minutes == 0)
        return QCoreApplication::translate("vornic", "%1 seconds left").arg(seconds);
    if (minutes == 1)
        return QCoreApplication::translate("vornic", "1 minute left");
    if (minutes < 60)
        return QCoreApplication::translate("vornic", "%1 minutes left").arg(minutes);
    return QCoreApplication::translate("vornic", "%1 hours, %2 minutes left")
        .arg(minutes / 60)
        .arg(minutes % 60);
}

QString secondsText(double seconds)
{
    return QString::number(seconds, 'f', QLocale::FloatingPointShortest);
}

QString minutesAndSeconds(double seconds)
{
    const auto whole = static_cast<qint64>(seconds);
    return QStringLiteral("%1:%2").arg(whole / 60).arg(whole % 60, 2, 10, QLatin1Char('0'));
}

} // namespace vornic
