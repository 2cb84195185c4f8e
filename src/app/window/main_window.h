#pragma once

#include <QMainWindow>

#include <memory>

class QFont;

namespace vornic {

class VNColorWell;
class VNComboboxView;
class VornicAppDelegate;

namespace Ui {
class MainWindow;
}

/// The main window: what is recorded, how, the logo, and the record button.
///
/// Made by main; lives on the main thread. Its interface file says which property of a control follows which
/// key path of the delegate: "bind_checked" set to "options.enableAudio" ties the one to the other.
class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit MainWindow(VornicAppDelegate &delegate);
    ~MainWindow() override;

    /// The busy indicator.
    void setBusy(bool busy);
    /// Enables the controls that may be used now.
    void reloadData();
    /// Chooses the full display or the selected rectangle, and presses the record button; with a \a file it records
    /// at once, to there.
    void record(bool fullDisplay, const QString &file = {});

signals:
    void closed();

protected:
    void closeEvent(QCloseEvent *event) override;

private slots:
    void setVideoQualiy();
    void selAudioDevice();
    void setFontFillColor();
    void setFontStrokeColor();

private:
    void nameItems();
    void bindControls();
    void connectActions();
    void connectColorWell(VNColorWell &well, const char *selector);
    void showAudioDevices();
    void showLogo();
    void showAbout();

    VornicAppDelegate &m_delegate;
    std::unique_ptr<Ui::MainWindow> m_ui;
};

} // namespace vornic
