#pragma once

#include "app/VornicAppDelegate.h"
#include "app/window/main_window.h"
#include "app/window/window_front_end.h"
#include "desktop/global_key.h"

#include <QObject>

#include <functional>

class QApplication;

namespace vornic {

class LevelWatch;
class Recovery;
class RegionSelection;
class SingleInstance;
class UnixSignals;

/// The program with its window: delegate, overlay and main window, tied to each other and to the session.
///
/// Made by main after the application object, and run once; main thread.
class WindowProgram : public QObject
{
    Q_OBJECT
public:
    /// What another start, a key or the desktop can ask of the window that runs.
    static constexpr auto recordFullAction = "record-full";
    static constexpr auto recordRectangleAction = "record-rectangle";
    static constexpr auto stopAction = "stop";
    static constexpr auto toggleAction = "toggle";
    static constexpr auto pauseAction = "pause";

    WindowProgram(QApplication &application, const UnixSignals &signalled, SingleInstance &instance);
    ~WindowProgram() override;

    /// Shows the window, carries out \a action, to \a file, unless they are empty, and returns with the exit status
    /// when the program ends.
    [[nodiscard]] int run(const QString &action, const QString &file);
    /// The X server has gone, and the toolkit with it: stores the options, and leaves a recording that runs to a process
    /// that makes its movie. Returns the exit status; nothing is called after it.
    [[nodiscard]] int endWithoutDisplay();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    [[nodiscard]] RecordingSession &session() const { return m_delegate.session(); }
    void launch();
    void followSession(QApplication &application);
    void endUnattended();
    void performOnceShown(const QString &action, const QString &file);
    void perform(const QString &action, const QString &file);
    [[nodiscard]] bool canPerform(const QString &action) const;
    [[nodiscard]] bool canStart() const;
    void start(const std::function<void()> &record);
    void connectWindow();
    void listenForKeys();
    void keyAnswered(GlobalKey::Answer answer);
    [[nodiscard]] QString keyNote(GlobalKey::Answer answer) const;
    void selectOnScreen();
    void endSelection();
    [[nodiscard]] bool canToggle() const;
    void toggle();

    WindowFrontEnd m_frontEnd;
    VornicAppDelegate m_delegate;
    VNRecorderWndCtrl &m_overlay;
    std::unique_ptr<LevelWatch> m_levelWatch;
    std::unique_ptr<MainWindow> m_window;
    std::unique_ptr<Recovery> m_recovery;
    std::unique_ptr<RegionSelection> m_selection; ///< null but while the user chooses a rectangle
    std::unique_ptr<GlobalKey> m_key;             ///< that starts and stops from any program
    std::unique_ptr<GlobalKey> m_pauseKey;        ///< that pauses and goes on
    QString m_pauseKeyNote;                       ///< empty where it is heard
};

} // namespace vornic
