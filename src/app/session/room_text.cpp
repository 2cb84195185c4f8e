#include "app/session/room_text.h"

#include "app/session/recording_room.h"

#include <QCoreApplication>
#include <QDir>
#include <QLocale>

namespace vornic {

QString roughLength(double seconds)
{
    constexpr double day = 24.0 * 60 * 60;
    if (seconds >= day)
        return QCoreApplication::translate("vornic", "more than a day");
    const int minutes = static_cast<int>(seconds / 60);
    if (minutes < 1)
        return QCoreApplication::translate("vornic", "less than a minute");
    if (minutes < 60)
        return QCoreApplication::translate("vornic", "%1 min").arg(minutes);
    const int hours = minutes / 60;
    const int tens = minutes % 60 / 10 * 10;
    if (hours >= 10 || tens == 0)
        return QCoreApplication::translate("vornic", "%1 h").arg(hours);
    return QCoreApplication::translate("vornic", "%1 h %2 min").arg(hours).arg(tens);
}

QString recordedSize(const RecordingRoom &room)
{
    constexpr std::uint64_t gigabyte = 1'000'000'000;
    return QLocale().formattedDataSize(static_cast<qint64>(room.spooledBytes),
                                       room.spooledBytes < gigabyte ? 0 : 1,
                                       QLocale::DataSizeSIFormat);
}

QString sizeAndRoom(const RecordingRoom &room)
{
    const QString size = recordedSize(room);
    return room.seconds
        ? QCoreApplication::translate("vornic", "%1, room for %2").arg(size, roughLength(*room.seconds))
        : size;
}

QString littleRoom(const RecordingRoom &room)
{
    const QString length = roughLength(room.seconds.value_or(0));
    const QString folder = QDir::toNativeSeparators(room.folder);
    return room.isForMovie ? QCoreApplication::translate(
                                 "vornic",
                                 "At this rate there is room for %1 more: then the disk that holds %2 is "
                                 "too small for the movie.")
                                 .arg(length, folder)
                           : QCoreApplication::translate(
                                 "vornic",
                                 "At this rate there is room for %1 more: then the disk that holds %2 is "
                                 "almost full, and the recording ends by itself.")
                                 .arg(length, folder);
}

QString liesInMemoryText(const QString &folder)
{
    return QCoreApplication::translate(
               "vornic",
               "The cache folder %1 lies in memory: the recording takes memory until its "
               "movie is written, and a power cut or a restart loses it.")
        .arg(QDir::toNativeSeparators(folder));
}

} // namespace vornic
