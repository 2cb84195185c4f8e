#pragma once

#include "app/session/desktop_services.h"
#include "app/session/front_end.h"
#include "app/session/logo_panels.h"
#include "app/session/recording_progress.h"
#include "app/session/recording_questions.h"

#include <QCoreApplication>
#include <QPointer>

#include <memory>

class QFileDialog;
class QFontDialog;
class QWidget;

namespace vornic {

class IdleInhibitor;
class MainWindow;
class Notifier;
class StopItem;
class VornicAppDelegate;

/// A recording as the window shows it: panels, sheets and message boxes on the main window, and the stop
/// item.
///
/// Made by main before the delegate and connected to it and its window after; lives on the main thread.
class WindowFrontEnd final : public RecordingQuestions,
                             public RecordingProgress,
                             public DesktopServices,
                             public LogoPanels
{
public:
    WindowFrontEnd();
    ~WindowFrontEnd();
    WindowFrontEnd(const WindowFrontEnd &) = delete;
    WindowFrontEnd &operator=(const WindowFrontEnd &) = delete;

    [[nodiscard]] FrontEnd frontEnd() { return { *this, *this, *this, *this }; }

    /// Borrows both; before the first recording.
    void setWindow(MainWindow *window, VornicAppDelegate *delegate);

    void askAboutFreeSpace(std::function<void(bool goOn)> answer) override;
    void runSavePanel(const QString &name,
                      const QString &type,
                      std::function<void(std::optional<QString> path)> answer) override;
    void showHint(std::function<void(int response)> answer) override;
    void showStopItem(const QString &title, const QRectF &recorded) override;
    void setStopItemTitle(const QString &title) override;
    void hideStopItem() override;
    void minimiseMainWindow() override;
    void bringMainWindowToFront() override;
    void setBusy(bool busy) override;
    void reloadData() override;
    void askForOtherFile(const QString &type,
                         std::function<void(std::optional<QString> path)> answer) override;
    void beginProgress(std::uint64_t frames) override;
    void setProgress(double percent) override;
    void endProgress() override;
    void alert(const QString &message, const QString &informativeText) override;
    void alertError(const QString &sentence) override;
    [[nodiscard]] bool confirmQuit(const QString &message, const QString &informativeText) override;
    void reveal(const QString &path) override;
    void open(const QString &path) override;
    void announceMovie(const QString &path, double seconds) override;
    void inhibitIdle(bool inhibits) override;
    void chooseLogoImage(std::function<void(std::optional<QString> path)> answer) override;
    void orderFrontFontPanel(const QFont &selected, std::function<void(const QFont &font)> changed) override;

private:
    Q_DECLARE_TR_FUNCTIONS(vornic::WindowFrontEnd)
    static void runPanel(QFileDialog &panel, std::function<void(std::optional<QString> path)> answer);
    [[nodiscard]] QWidget *visibleWindow() const;

    QPointer<MainWindow> m_window;
    VornicAppDelegate *m_delegate = nullptr;
    std::unique_ptr<StopItem> m_stopItem;
    std::unique_ptr<IdleInhibitor> m_idleInhibitor; ///< null while the desktop may sleep
    std::unique_ptr<Notifier> m_notifier;
    QString m_movieFolder;             ///< where the last movie was put; first the user's folder for movies
    QPointer<QFontDialog> m_fontPanel; ///< null while it is closed
};

} // namespace vornic
