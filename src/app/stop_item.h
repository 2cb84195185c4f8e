#pragma once

#include <QSystemTrayIcon>
#include <QWidget>

#include <memory>

class QToolButton;

namespace vornic {

/// The one visible way to stop: a tray icon where the desktop has a tray, with the clock in its tool tip, and
/// else a small bar that stays on top, with the clock on its button.
///
/// Made and used by the window's front end while a recording runs, on the main thread.
class StopItem : public QObject
{
    Q_OBJECT
public:
    explicit StopItem(const QString &title);
    ~StopItem() override;

    void setTitle(const QString &title);

signals:
    void stopAsked();

private:
    void makeTrayIcon();
    void makeBar();

    std::unique_ptr<QSystemTrayIcon> m_trayIcon; ///< null where the desktop has no tray
    std::unique_ptr<QWidget> m_bar;              ///< null where it has one
    QToolButton *m_button = nullptr;             ///< in m_bar
};

} // namespace vornic
