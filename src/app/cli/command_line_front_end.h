#pragma once

#include "app/cli/command_line.h"
#include "app/session/desktop_services.h"
#include "app/session/front_end.h"
#include "app/session/logo_panels.h"
#include "app/session/recording_progress.h"
#include "app/session/recording_questions.h"

#include <QElapsedTimer>

#include <memory>

namespace vornic {

class IdleInhibitor;

/// A recording on the command line: answers from the flags, progress on standard error.
///
/// Made by main for "vornic record"; lives on the main thread. On a terminal the clock and the bar redraw
/// their line; elsewhere they are plain lines, a clock every ten seconds and a percentage every ten percent.
class CommandLineFrontEnd final : public RecordingQuestions,
                                  public RecordingProgress,
                                  public DesktopServices,
                                  public LogoPanels
{
public:
    explicit CommandLineFrontEnd(CommandLine line);
    ~CommandLineFrontEnd();
    CommandLineFrontEnd(const CommandLineFrontEnd &) = delete;
    CommandLineFrontEnd &operator=(const CommandLineFrontEnd &) = delete;

    [[nodiscard]] FrontEnd frontEnd() { return { *this, *this, *this, *this }; }

    /// The program was asked to end: tells what is going on where it was asked before, and how to put the movie off
    /// while it is written.
    void endAsked();
    /// The program was asked to leave everything for later.
    void leaveAsked();
    [[nodiscard]] bool isAskedToEnd() const { return m_isAskedToEnd; }
    /// The user knows that to ask again puts the movie off.
    [[nodiscard]] bool hasToldOfLater() const { return m_hasToldOfLater; }

    void askAboutFreeSpace(std::function<void(bool goOn)> answer) override;
    void runSavePanel(const QString &name,
                      const QString &type,
                      std::function<void(std::optional<QString> path)> answer) override;
    void displayDeclined() override;
    void showStopItem(const QString &title, const QRectF &recorded) override;
    void setStopItemTitle(const QString &title) override;
    void showPaused(bool isPaused) override;
    void hideStopItem() override;
    void soundIsMissing(const std::function<void()> &goOn) override;
    void oneSoundIsLost(const QString &name, bool isLost) override;
    void nothingIsHeard(const QString &name) override;
    void sizeIsReached() override;
    void movieIsWrittenAgain() override;
    void showRoom(const RecordingRoom &room) override;
    void warnOfLittleRoom(const RecordingRoom &room) override;
    void beginProgress(std::uint64_t frames) override;
    void setProgress(double percent) override;
    void endProgress() override;
    void recordingKept(const QString &id) override;
    void movieRenamed(const QString &meant, const QString &path) override;
    void inhibitIdle(bool inhibits) override;
    void alert(const QString &message, const QString &informativeText) override;
    void alertError(const QString &sentence) override;

private:
    void tellOfLater();

    CommandLine m_line;
    bool m_isTerminal;
    QString m_lastTitle;
    QString m_room; ///< behind the clock; empty in the first second
    int m_lastPercent = -1;
    bool m_isWriting = false;
    bool m_isAskedToEnd = false;
    bool m_hasToldOfLater = false;
    QElapsedTimer m_encoding;
    std::unique_ptr<IdleInhibitor> m_idleInhibitor; ///< null while the desktop may sleep
};

} // namespace vornic
