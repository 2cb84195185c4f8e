#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QStringList>
#include <QVariant>

#include <optional>

namespace vornic {

/// How a service of the desktop is asked not to become idle.
struct InhibitRequest {
    QDBusConnection bus;
    QString service;
    QStringList paths; ///< where different desktops have the object, tried in this order
    QString interface;
    QVariantList arguments; ///< of Inhibit
    /// Takes back the cookie that Inhibit gave; empty where it gives a descriptor that is closed for that.
    QString releaseMethod;
    /// Where Inhibit gives an object of the service in place of a cookie: that object has the method, in this interface.
    QString releaseInterface = {};
};

/// Keeps one service of the desktop from becoming idle; asks again when another process takes the service
/// over.
///
/// Made by IdleInhibitor, on the main thread. It waits for nothing: an answer that comes after release() is
/// released then.
class DBusInhibition : public QObject
{
    Q_OBJECT

public:
    /// Asks the service if it runs. It is not started: what does not run sends nothing to sleep.
    explicit DBusInhibition(InhibitRequest request);

    /// Ends the inhibition; the object deletes itself, at once or when the service has answered.
    void release();

private:
    /// An inhibition that the service granted: its reply holds what it gives.
    struct Grant {
        QDBusMessage reply;
        QString path;
    };

    void ask();
    void askAt(int question, const QStringList &paths);
    void takeAnswer(int question, const QStringList &paths, const QDBusMessage &answer);
    void serviceMoved(const QString &newOwner);
    void giveBack();
    void giveBack(const Grant &grant) const;

    InhibitRequest m_request;
    QDBusServiceWatcher m_watcher;
    int m_lastQuestion = 0; ///< earlier ones went to a process that is no longer the service
    int m_pendingQuestions = 0;
    bool m_isReleased = false;
    std::optional<Grant> m_grant;
};

} // namespace vornic
