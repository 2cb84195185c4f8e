#pragma once

#include <QObject>
#include <QRect>
#include <QString>
#include <QSystemTrayIcon>
#include <QTimer>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

class QAction;
class QMenu;

namespace vornic {

class FullScreenWatch;
class StopBar;

/// The visible way to stop: a tray icon where the desktop has a tray, with the clock in its tool tip and its menu.
/// Where it has none, and while a full-screen window hides it, a small bar with the clock on its button.
///
/// Made and used by the window's front end while a recording runs, on the main thread.
class StopItem : public QObject
{
    Q_OBJECT
public:
    /// \a recorded: what the movie shows, in the toolkit's coordinates. The bar is not shown yet.
    StopItem(const QString &title, const QRect &recorded);
    ~StopItem() override;

    /// Whether the desktop has a tray, and answers when it is asked for that.
    [[nodiscard]] static bool hasTray();

    void setTitle(const QString &title);
    /// What is told behind the clock, in tool tips and the menu.
    void setRoom(const QString &room);
    /// Told beside the clock, for as long as it is so.
    void setSoundIsLost(bool isLost);
    /// Shown in place of the clock from now on, which the tool tips tell too: the recording ends by itself.
    void setTimeLeft(std::int64_t seconds);
    /// Told beside the clock and by the tray icon.
    void setPaused(bool isPaused);
    /// How loud the sound is: the loudest sample, as a share of the loudest that there is.
    void showLevel(double peak);
    /// The bar may be shown, where it is needed: the main window is gone, and another one has the keyboard focus. Before,
    /// the window manager would give it to the bar.
    void allowBar();
    /// Offers, until it is taken or withdrawn, to record without the sound that does not come.
    void offerToGoOnWithoutSound(std::function<void()> goOn);
    /// The sound has come, or is not waited for any more.
    void withdrawOffer();
    /// For somebody who looks for it: the bar comes back, and the tray icon blinks for some seconds.
    void drawAttention();

signals:
    void stopAsked();
    void pauseAsked();

private:
    void makeTrayIcon();
    [[nodiscard]] QIcon icon() const;
    void showTexts();
    void showBarWhereNeeded();
    void goOnWithoutSound();
    void blink();

    QString m_title;
    QString m_room;
    std::optional<std::int64_t> m_secondsLeft; ///< nothing where there is no end
    bool m_soundIsLost = false;
    bool m_isPaused = false;
    bool m_isBarAllowed = false;
    std::function<void()> m_goOn; ///< empty but while sound is missing
    std::unique_ptr<QMenu> m_menu;
    std::unique_ptr<QSystemTrayIcon> m_trayIcon; ///< null where the desktop has no tray
    QAction *m_clock = nullptr;                  ///< in m_menu
    QAction *m_pauseAction = nullptr;            ///< in m_menu
    QAction *m_goOnAction = nullptr;             ///< in m_menu
    QTimer m_blinking;
    int m_blinksLeft = 0; ///< changes of the tray icon; an even number leaves icon()
    std::unique_ptr<StopBar> m_bar;
    std::unique_ptr<FullScreenWatch> m_fullScreen;
};

} // namespace vornic
