#include "app/cli/command_line_progress.h"

#include "app/cli/telling.h"
#include "app/session/room_text.h"
#include "app/session/time_text.h"
#include "base/free_space.h"
#include "capture/spool/VNBufferMgr.h"

#include <QCoreApplication>

#include <unistd.h>

#include <utility>

namespace vornic {

CommandLineProgress::CommandLineProgress(std::optional<double> durationSeconds)
    : m_durationSeconds(durationSeconds)
    , m_isTerminal(::isatty(STDERR_FILENO) == 1)
{
}

void CommandLineProgress::showStopItem(const QString & /*title*/, const QRectF & /*recorded*/)
{
    if (const QString folder = VNBufferMgr::cachePath(); liesInMemory(folder))
        tell(liesInMemoryText(folder));
    tell(m_durationSeconds
             ? QCoreApplication::translate("vornic", "Recording for %1 s; Ctrl-C stops it earlier.")
                   .arg(secondsText(*m_durationSeconds))
             : QCoreApplication::translate("vornic", "Recording; Ctrl-C stops it."));
}

void CommandLineProgress::setStopItemTitle(const QString &title)
{
    if (title == std::exchange(m_lastTitle, title))
        return;
    const QString line = m_room.isEmpty() ? title : QStringLiteral("%1, %2").arg(title, m_room);
    if (m_isTerminal)
        standardError().redraw(line);
    else if (title.endsWith(u'0') || !title.front().isDigit())
        tell(line);
}

void CommandLineProgress::showPaused(bool isPaused)
{
    const QString line = isPaused ? QCoreApplication::translate("vornic", "%1, paused").arg(m_lastTitle)
                                  : QCoreApplication::translate("vornic", "%1, recording").arg(m_lastTitle);
    if (m_isTerminal)
        standardError().redraw(line);
    else
        tell(line);
}

void CommandLineProgress::hideStopItem()
{
    standardError().endRedrawnLine();
}

void CommandLineProgress::showRoom(const RecordingRoom &room)
{
    m_room = sizeAndRoom(room);
}

void CommandLineProgress::warnOfLittleRoom(const RecordingRoom &room)
{
    tellError(littleRoom(room));
}

void CommandLineProgress::sizeIsReached()
{
    standardError().endRedrawnLine();
    tell(
        QCoreApplication::translate("vornic", "The movie is as large as it may become; the recording ends."));
}

/// Nobody may sit there who could be asked.
void CommandLineProgress::soundIsMissing(const std::function<void()> &goOn)
{
    tellError(QCoreApplication::translate("vornic", "No sound has come; the recording goes on without it."));
    goOn();
}

void CommandLineProgress::oneSoundIsLost(const QString &name, bool isLost)
{
    tellError((isLost ? QCoreApplication::translate("vornic", "“%1” is gone; the other sound is recorded.")
                      : QCoreApplication::translate("vornic", "“%1” is back."))
                  .arg(name));
}

void CommandLineProgress::nothingIsHeard(const QString &name)
{
    tellError(QCoreApplication::translate("vornic", "Nothing is heard from %1.").arg(name));
}

} // namespace vornic
