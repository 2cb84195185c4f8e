#pragma once

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

namespace vornic {

/// What a notification tells the user and lets him do.
struct Notification {
    QString title;
    QString body;        ///< plain text
    QString actionLabel; ///< empty: there is nothing to do
    /// Runs on the main thread when the user asks for it, with the button or by a click on the notification.
    /// The token lets a window that it opens come to the front; empty where the desktop gives none.
    std::function<void(const QString &activationToken)> action;
};

/// Shows notifications of the desktop and runs their actions.
///
/// Made by the window's front end, on the main thread; actions run as long as it lives. It waits for
/// nothing; on a desktop without notifications nothing is shown.
class Notifier : public QObject
{
    Q_OBJECT

public:
    explicit Notifier(QObject *parent = nullptr);

    void show(const Notification &notification);
    /// For a process that ends with it: waits until the desktop has it, for two seconds at most. Its action is none.
    static void showBeforeExit(const Notification &notification);

private slots:
    // The signals of the desktop's service.
    void actionInvoked(uint id, const QString &key);
    void activationTokenGiven(uint id, const QString &token);
    void notificationClosed(uint id, uint reason);

private:
    struct Shown {
        std::function<void(const QString &)> action;
        QString activationToken;
    };

    void listen();
    void send(const Notification &notification, const QStringList &capabilities);

    bool m_isListening = false;
    QHash<uint, Shown> m_shown;
};

} // namespace vornic
