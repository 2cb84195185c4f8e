#pragma once

#include "app/cli/command_line.h"
#include "app/cli/command_line_movie.h"
#include "app/cli/command_line_progress.h"
#include "app/session/desktop_services.h"
#include "app/session/front_end.h"
#include "app/session/logo_panels.h"
#include "app/session/program_windows.h"
#include "app/session/recording_questions.h"

#include <memory>

namespace vornic {

class IdleInhibitor;

/// A recording on the command line: answers from the flags, progress on standard error, and no window.
///
/// Made for "vornic record" and "vornic recover"; lives on the main thread.
class CommandLineFrontEnd final : public RecordingQuestions,
                                  public ProgramWindows,
                                  public DesktopServices,
                                  public LogoPanels
{
public:
    explicit CommandLineFrontEnd(CommandLine line);
    ~CommandLineFrontEnd();
    CommandLineFrontEnd(const CommandLineFrontEnd &) = delete;
    CommandLineFrontEnd &operator=(const CommandLineFrontEnd &) = delete;

    [[nodiscard]] FrontEnd frontEnd()
    {
        return { *this, m_progress, m_progress, m_movie, *this, *this, *this };
    }

    [[nodiscard]] CommandLineMovie &movie() { return m_movie; }

    void askAboutFreeSpace(std::function<void(bool goOn)> answer) override;
    void runSavePanel(const QString &name,
                      const QString &type,
                      std::function<void(std::optional<QString> path)> answer) override;
    void displayDeclined() override;
    void inhibitIdle(bool inhibits) override;
    void alert(const QString &message, const QString &informativeText) override;
    void alertError(const QString &sentence) override;

private:
    CommandLine m_line;
    CommandLineProgress m_progress;
    CommandLineMovie m_movie;
    std::unique_ptr<IdleInhibitor> m_idleInhibitor; ///< null while the desktop may sleep
};

} // namespace vornic
