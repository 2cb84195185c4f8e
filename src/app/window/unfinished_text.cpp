#include "app/window/unfinished_text.h"

#include "app/session/time_text.h"
#include "capture/spool/stored_recordings.h"

#include <QCoreApplication>
#include <QLocale>

namespace vornic {

namespace {

QString sizeText(const StoredRecording &recording)
{
    return QLocale().formattedDataSize(static_cast<qint64>(recording.bytes), 1);
}

QString capitalized(QString text)
{
    return text.isEmpty() ? text : text.replace(0, 1, text.at(0).toUpper());
}

} // namespace

QString startText(const QDateTime &start, const QDateTime &now)
{
    const QDateTime local = start.toLocalTime();
    const QString time = QLocale().toString(local.time(), QLocale::ShortFormat);
    const qint64 days = local.date().daysTo(now.toLocalTime().date());
    if (days == 0)
        return QCoreApplication::translate("vornic", "today, %1").arg(time);
    if (days == 1)
        return QCoreApplication::translate("vornic", "yesterday, %1").arg(time);
    constexpr int week = 7;
    const QString day = days > 0 && days < week ? QLocale().dayName(local.date().dayOfWeek())
                                                : QLocale().toString(local.date(), QLocale::ShortFormat);
    return QStringLiteral("%1, %2").arg(day, time);
}

QString unfinishedSentence(const QList<StoredRecording> &recordings)
{
    if (recordings.isEmpty())
        return {};
    if (recordings.size() > 1)
        return QCoreApplication::translate("vornic", "%1 recordings were not finished.")
            .arg(recordings.size());
    const StoredRecording &recording = recordings.first();
    if (!recording.isReadable)
        return QCoreApplication::translate("vornic", "A recording of %1 cannot be read any more.")
            .arg(sizeText(recording));
    return QCoreApplication::translate("vornic", "A recording of %1 from %2 was not finished.")
        .arg(minutesAndSeconds(recording.seconds), startText(recording.start));
}

QString unfinishedEntry(const StoredRecording &recording)
{
    if (!recording.isReadable)
        return QCoreApplication::translate("vornic", "Cannot be read any more\n%1").arg(sizeText(recording));
    const QString length = minutesAndSeconds(recording.seconds);
    const QString second = recording.hasSound
        ? QCoreApplication::translate("vornic", "%1 long, with sound, %2").arg(length, sizeText(recording))
        : QCoreApplication::translate("vornic", "%1 long, %2").arg(length, sizeText(recording));
    return capitalized(startText(recording.start)) + u'\n' + second;
}

} // namespace vornic
