#include "app/cli/command_line_movie.h"

#include "app/cli/telling.h"
#include "app/session/end_text.h"
#include "app/session/time_text.h"

#include <QCoreApplication>

#include <unistd.h>

#include <utility>

namespace vornic {

namespace {

QString bar(int percent)
{
    constexpr int width = 30;
    const int filled = percent * width / 100;
    return QStringLiteral("[%1%2]").arg(QString(filled, u'#'), QString(width - filled, u'-'));
}

} // namespace

CommandLineMovie::CommandLineMovie()
    : m_isTerminal(::isatty(STDERR_FILENO) == 1)
{
}

void CommandLineMovie::endAsked()
{
    if (std::exchange(m_isAskedToEnd, true) && !m_isWriting)
        tell(QCoreApplication::translate(
            "vornic", "The recording is being ended, and its movie is next; Ctrl-\\ keeps it for later."));
    tellOfLater();
}

void CommandLineMovie::leaveAsked()
{
    m_isAskedToEnd = true;
    m_hasToldOfLater = true;
}

void CommandLineMovie::beginProgress(std::uint64_t /*frames*/)
{
    m_encoding.start();
    m_lastPercent = -1;
    m_isWriting = true;
    tellOfLater();
}

void CommandLineMovie::setProgress(double percent)
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

void CommandLineMovie::endProgress()
{
    m_isWriting = false;
    standardError().endRedrawnLine();
}

void CommandLineMovie::movieIsWrittenAgain()
{
    endProgress();
    tell(QCoreApplication::translate("vornic",
                                     "The movie is too large; it is written again with a lower bit rate."));
}

void CommandLineMovie::recordingKept(const QString &id)
{
    tell(recordingKeptLine(id));
}

void CommandLineMovie::movieRenamed(const QString &meant, const QString &path)
{
    tellError(QCoreApplication::translate(
                  "vornic", "Another file has come to stand in %1 and is kept; the movie is %2.")
                  .arg(meant, path));
}

/// Once, to somebody who seems to be in a hurry.
void CommandLineMovie::tellOfLater()
{
    if (!m_isWriting || !m_isAskedToEnd || std::exchange(m_hasToldOfLater, true))
        return;
    tell(QCoreApplication::translate("vornic", "Writing the movie; Ctrl-C puts it off for later."));
}

} // namespace vornic
