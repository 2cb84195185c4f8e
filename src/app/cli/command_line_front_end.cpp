#include "app/cli/command_line_front_end.h"

#include "app/session/end_text.h"
#include "app/session/room_text.h"
#include "app/session/time_text.h"
#include "base/error_stream.h"
#include "base/free_space.h"
#include "capture/spool/VNBufferMgr.h"
#include "desktop/idle_inhibitor.h"

#include <QCoreApplication>

#include <unistd.h>

#include <utility>

namespace vornic {

namespace {

void tell(const QString &line)
{
    standardError().writeLine(line);
}

QString bar(int percent)
{
    constexpr int width = 30;
    const int filled = percent * width / 100;
    return QStringLiteral("[%1%2]").arg(QString(filled, u'#'), QString(width - filled, u'-'));
}

} // namespace

CommandLineFrontEnd::CommandLineFrontEnd(CommandLine line)
    : m_line(std::move(line))
    , m_isTerminal(::isatty(STDERR_FILENO) == 1)
{
}

CommandLineFrontEnd::~CommandLineFrontEnd() = default;

void CommandLineFrontEnd::askAboutFreeSpace(std::function<void(bool)> answer)
{
    answer(m_line.ignoreLowSpace);
}

void CommandLineFrontEnd::runSavePanel(const QString & /*name*/,
                                       const QString & /*type*/,
                                       std::function<void(std::optional<QString>)> answer)
{
    answer(m_line.file);
}

void CommandLineFrontEnd::displayDeclined()
{
    alertError(
        QCoreApplication::translate("vornic", "The desktop was not allowed to show its screen to Vornic."));
}

void CommandLineFrontEnd::showStopItem(const QString & /*title*/, const QRectF & /*recorded*/)
{
    if (const QString folder = VNBufferMgr::cachePath(); liesInMemory(folder))
        tell(liesInMemoryText(folder));
    tell(m_line.durationSeconds
             ? QCoreApplication::translate("vornic", "Recording for %1 s; Ctrl-C stops it earlier.")
                   .arg(secondsText(*m_line.durationSeconds))
             : QCoreApplication::translate("vornic", "Recording; Ctrl-C stops it."));
}

void CommandLineFrontEnd::setStopItemTitle(const QString &title)
{
    if (title == std::exchange(m_lastTitle, title))
        return;
    const QString line = m_room.isEmpty() ? title : QStringLiteral("%1, %2").arg(title, m_room);
    if (m_isTerminal)
        standardError().redraw(line);
    else if (title.endsWith(u'0') || !title.front().isDigit())
        tell(line);
}

void CommandLineFrontEnd::showPaused(bool isPaused)
{
    const QString line = isPaused ? QCoreApplication::translate("vornic", "%1, paused").arg(m_lastTitle)
                                  : QCoreApplication::translate("vornic", "%1, recording").arg(m_lastTitle);
    if (m_isTerminal)
        standardError().redraw(line);
    else
        tell(line);
}

void CommandLineFrontEnd::showRoom(const RecordingRoom &room)
{
    m_room = sizeAndRoom(room);
}

void CommandLineFrontEnd::warnOfLittleRoom(const RecordingRoom &room)
{
    alertError(littleRoom(room));
}

/// Nobody may sit there who could be asked.
void CommandLineFrontEnd::soundIsMissing(const std::function<void()> &goOn)
{
    alertError(QCoreApplication::translate("vornic", "No sound has come; the recording goes on without it."));
    goOn();
}

void CommandLineFrontEnd::oneSoundIsLost(const QString &name, bool isLost)
{
    alertError((isLost ? QCoreApplication::translate("vornic", "“%1” is gone; the other sound is recorded.")
                       : QCoreApplication::translate("vornic", "“%1” is back."))
                   .arg(name));
}

void CommandLineFrontEnd::nothingIsHeard(const QString &name)
{
    alertError(QCoreApplication::translate("vornic", "Nothing is heard from %1.").arg(name));
}

void CommandLineFrontEnd::sizeIsReached()
{
    standardError().endRedrawnLine();
    tell(
        QCoreApplication::translate("vornic", "The movie is as large as it may become; the recording ends."));
}

void CommandLineFrontEnd::movieIsWrittenAgain()
{
    endProgress();
    tell(QCoreApplication::translate("vornic",
                                     "The movie is too large; it is written again with a lower bit rate."));
}

void CommandLineFrontEnd::hideStopItem()
{
    standardError().endRedrawnLine();
}

void CommandLineFrontEnd::beginProgress(std::uint64_t /*frames*/)
{
    m_encoding.start();
    m_lastPercent = -1;
    m_isWriting = true;
    tellOfLater();
}

void CommandLineFrontEnd::endAsked()
{
    if (std::exchange(m_isAskedToEnd, true) && !m_isWriting)
        tell(QCoreApplication::translate(
            "vornic", "The recording is being ended, and its movie is next; Ctrl-\\ keeps it for later."));
    tellOfLater();
}

void CommandLineFrontEnd::leaveAsked()
{
    m_isAskedToEnd = true;
    m_hasToldOfLater = true;
}

/// Once, to somebody who seems to be in a hurry.
void CommandLineFrontEnd::tellOfLater()
{
    if (!m_isWriting || !m_isAskedToEnd || std::exchange(m_hasToldOfLater, true))
        return;
    tell(QCoreApplication::translate("vornic", "Writing the movie; Ctrl-C puts it off for later."));
}

void CommandLineFrontEnd::setProgress(double percent)
{
    const int whole = static_cast<int>(percent);
    if (whole == m_lastPercent || (whole == 0 && !m_isTerminal))
        return;
    const int before = std::exchange(m_lastPercent, whole);
    const double left
        = whole > 0 ? static_cast<double>(m_encoding.elapsed()) * (100 - whole) / whole / 1000 : 0.0;
    if (m_isTerminal)
        standardError().redraw(QCoreApplication::translate("vornic", "Writing the movie %1 %2 %, %3 left")
                                   .arg(bar(whole))
                                   .arg(whole, 3)
                                   .arg(minutesAndSeconds(left)));
    else if (whole / 10 != before / 10)
        tell(QCoreApplication::translate("vornic", "Writing the movie: %1 %, %2 left")
                 .arg(whole)
                 .arg(minutesAndSeconds(left)));
}

void CommandLineFrontEnd::endProgress()
{
    m_isWriting = false;
    standardError().endRedrawnLine();
}

void CommandLineFrontEnd::recordingKept(const QString &id)
{
    tell(recordingKeptLine(id));
}

void CommandLineFrontEnd::movieRenamed(const QString &meant, const QString &path)
{
    alertError(QCoreApplication::translate(
                   "vornic", "Another file has come to stand in %1 and is kept; the movie is %2.")
                   .arg(meant, path));
}

void CommandLineFrontEnd::inhibitIdle(bool inhibits)
{
    m_idleInhibitor = inhibits
        ? std::make_unique<IdleInhibitor>(QCoreApplication::translate("vornic", "Recording the screen"))
        : nullptr;
}

void CommandLineFrontEnd::alert(const QString &message, const QString &informativeText)
{
    tell(QStringLiteral("vornic: %1. %2.").arg(message, informativeText));
}

void CommandLineFrontEnd::alertError(const QString &sentence)
{
    tell(QStringLiteral("vornic: %1").arg(sentence));
}

} // namespace vornic
