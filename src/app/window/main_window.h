#pragma once

#include <QMainWindow>

#include <functional>
#include <memory>
#include <utility>

namespace vornic {

class LevelWatch;
class OptionsViewModel;
class ShortcutField;
class UnfinishedLine;
class VNColorWell;
class VNComboboxView;
class VornicAppDelegate;

namespace Ui {
class MainWindow;
}

/// The main window: what is recorded, how, the logo, and the record button.
///
/// Made by main; lives on the main thread. Its interface file says which property of a control follows which
/// key path of the delegate: "bind_checked" set to "options.enableAudio" ties the one to the other. A path that
/// begins with "view." is one of OptionsViewModel.
class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit MainWindow(VornicAppDelegate &delegate);
    ~MainWindow() override;

    /// Shows how loud the chosen input is, while it may be seen and nothing is recorded; borrowed for life.
    void setLevelWatch(LevelWatch *watch);
    /// The busy indicator.
    void setBusy(bool busy);
    /// Enables the controls that may be used now, and makes the record button what it is now.
    void reloadData();
    /// Tells above the record button what was recorded, until the next recording begins.
    void showSaved(const QString &path, double seconds, const QString &flaws = {});
    /// Tells \a sentence in the same place; empty: nothing.
    void showStatus(const QString &sentence);
    /// The line that tells of recordings that were not finished.
    [[nodiscard]] UnfinishedLine &unfinishedLine();
    /// Whether the menu leads to their list.
    void setHasUnfinished(bool has);
    /// Shows the key that starts and stops from any program, as QKeySequence writes it portably.
    void setShortcut(const QString &portable);
    /// Tells beneath the key why it does not work; empty: it does.
    void setShortcutProblem(const QString &sentence);
    /// Moves the window off rectangle and logo where it hides part of them, and tells what the user does not see as it is:
    /// that there is no room, or that the frame cannot stand at every pixel.
    void keepOffRecorded();
    /// \a isExact is asked whether the overlay's frame can stand at every pixel; where it cannot the window says so.
    void setFrameIsExact(std::function<bool()> isExact) { m_frameIsExact = std::move(isExact); }
    /// Chooses the full display or the selected rectangle, and presses the record button; with a \a file it records
    /// at once, to there.
    void record(bool fullDisplay, const QString &file = {});

signals:
    void closed();
    /// The user wants to draw the rectangle, or to click a window.
    void selectOnScreenAsked();
    /// Of the movie that showSaved() was told of.
    void openAsked(const QString &path);
    void revealAsked(const QString &path);
    /// The user wants to see the recordings that were not finished.
    void unfinishedAsked();
    /// The user has chosen another key, or none where it is empty.
    void shortcutChosen(const QString &portable);
    /// The same for the key that pauses.
    void pauseShortcutChosen(const QString &portable);

protected:
    void closeEvent(QCloseEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private slots:
    void setVideoQualiy();
    void selAudioDevice();
    void setCountdown();
    void setFontFillColor();
    void setFontStrokeColor();

private:
    void nameItems();
    void fillLists();
    void bindControls();
    void connectActions();
    void connectRegion();
    void connectSound();
    void connectLogo();
    void connectStart();
    void connectShortcut(const ShortcutField &field, void (MainWindow::*chosen)(const QString &));
    void connectMenu();
    void connectColorWell(VNColorWell &well, const char *selector);
    void showAudioDevices();
    void showSoundLevels();
    void listen();
    [[nodiscard]] bool mayListen() const;
    void showLogo();
    void showForeignLetters();
    void showMonitor();
    void foldLogo();
    void fitContents();
    void showAbout();
    void pressRecordButton();
    void showClock(qint64 timestamp);

    VornicAppDelegate &m_delegate;
    std::unique_ptr<OptionsViewModel> m_viewModel;
    qint64 m_clock = 0; ///< of the recording, as it is shown; PKTimebase ticks
    LevelWatch *m_levelWatch = nullptr;
    bool m_shownRecording = false;
    std::function<bool()> m_frameIsExact; ///< empty: it is
    bool m_tellsOfPlace = false;          ///< the status line says what keepOffRecorded() has to tell
    std::unique_ptr<Ui::MainWindow> m_ui;
};

} // namespace vornic
