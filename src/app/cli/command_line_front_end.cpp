#include "app/cli/command_line_front_end.h"

#include "app/cli/telling.h"
#include "desktop/idle_inhibitor.h"

#include <QCoreApplication>

#include <utility>

namespace vornic {

CommandLineFrontEnd::CommandLineFrontEnd(CommandLine line)
    : m_line(std::move(line))
    , m_progress(m_line.durationSeconds)
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

void CommandLineFrontEnd::inhibitIdle(bool inhibits)
{
    m_idleInhibitor = inhibits
        ? std::make_unique<IdleInhibitor>(QCoreApplication::translate("vornic", "Recording the screen"))
        : nullptr;
}

void CommandLineFrontEnd::alert(const QString &message, const QString &informativeText)
{
    tellError(QStringLiteral("%1. %2.").arg(message, informativeText));
}

void CommandLineFrontEnd::alertError(const QString &sentence)
{
    tellError(sentence);
}

} // namespace vornic
