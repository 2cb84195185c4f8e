#pragma once

#include <QRect>
#include <QSystemTrayIcon>
#include <QWidget>

#include <memory>

class QAction;
class QMenu;

namespace vornic {

class PushButton;

/// Where in \a available a bar of the size \a bar stands: in the first corner in which it is clear of \a
/// avoid, from the upper right on; in the upper right one where none is.
[[nodiscard]] QPoint stopBarPosition(QSize bar, const QRect &available, const QRect &avoid);

/// The one visible way to stop: a tray icon where the desktop has a tray, with the clock in its tool tip and
/// its menu, and else a small bar that stays on top, with the clock on its button.
///
/// Made and used by the window's front end while a recording runs, on the main thread.
class StopItem : public QObject
{
    Q_OBJECT
public:
    /// \a avoid: where the bar should not stand, in the toolkit's coordinates.
    StopItem(const QString &title, const QRect &avoid);
    ~StopItem() override;

    void setTitle(const QString &title);

signals:
    void stopAsked();

private:
    void makeTrayIcon();
    void makeBar();

    QRect m_avoid;
    QString m_title;
    std::unique_ptr<QMenu> m_menu;
    std::unique_ptr<QSystemTrayIcon> m_trayIcon; ///< null where the desktop has no tray
    QAction *m_clock = nullptr;                  ///< in m_menu
    std::unique_ptr<QWidget> m_bar;              ///< null where there is a tray
    PushButton *m_button = nullptr;              ///< in m_bar
};

} // namespace vornic
