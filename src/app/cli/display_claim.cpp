#include "app/cli/display_claim.h"

#include "app/cli/command_line_front_end.h"
#include "app/session/unix_signals.h"
#include "display/display_backend.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QPointer>

#include <optional>

namespace vornic {

namespace {

/// Nothing where a signal came before the answer.
std::optional<DisplayAccess> answerOf(DisplayBackend &display, const CommandLineFrontEnd &frontEnd)
{
    const UnixSignals signalled;
    QEventLoop loop;
    QObject::connect(&signalled, &UnixSignals::terminationAsked, &loop, &QEventLoop::quit);
    QObject::connect(&signalled, &UnixSignals::leaveAsked, &loop, &QEventLoop::quit);
    // Shared, as the answer may come when the wait is over.
    const auto answer = std::make_shared<std::optional<DisplayAccess>>();
    display.prepare(frontEnd.parentWindow(), [answer, loop = QPointer(&loop)](const DisplayAccess &access) {
        *answer = access;
        if (loop)
            loop->quit();
    });
    if (!*answer)
        loop.exec();
    return *answer;
}

} // namespace

DisplayClaim::DisplayClaim(CommandLineFrontEnd &frontEnd)
    : m_display(mainDisplay())
{
    const std::optional<DisplayAccess> answer = answerOf(*m_display, frontEnd);
    m_isGranted = answer && answer->state == DisplayAccess::State::Granted;
    if (!answer)
        frontEnd.alertError(QCoreApplication::translate("vornic", "Nothing was recorded."));
    else if (answer->state == DisplayAccess::State::Declined)
        frontEnd.displayDeclined();
    else if (answer->state == DisplayAccess::State::Failed)
        frontEnd.alertError(answer->whyNot);
}

DisplayClaim::~DisplayClaim()
{
    m_display->release();
}

} // namespace vornic
