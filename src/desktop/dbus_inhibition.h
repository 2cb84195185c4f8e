#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QStringList>
#include <QVariant>

#include <optional>

namespace vornic {

/// How a service of the desktop is asked to keep awake.
struct InhibitRequest {
    QDBusConnection bus;
    QString service;
    QStringList paths; ///< where different desktops have the object, tried in this order
    QString interface;
    QVariantList arguments; ///< of Inhibit
    /// Takes back the cookie that Inhibit gave; empty where it gives a descriptor that is closed for that.
    QString releaseMethod;
};

/// The wish to keep awake, as one service knows it: uttered again to whoever takes the service over.
///
/// Made by IdleInhibitor, on the main thread. It waits for nothing: an answer that comes after release() is
/// released then.
class DBusInhibition : public QObject
{
    Q_OBJECT

public:
    /// Asks the service if it runs. It is not started: what does not run sends nothing to sleep.
    explicit DBusInhibition(InhibitRequest request);

    /// Takes the wish back; the object deletes itself, at once or when the service has answered.
    void release();

private:
    /// Leave that the service gave: its reply holds the cookie or the descriptor.
    struct Grant {
        QDBusMessage reply;
        QString path;
    };

    void ask();
    void askAt(int question, const QStringList &paths);
    void takeAnswer(int question, const QStringList &paths, const QDBusMessage &answer);
    void serviceMoved(const QString &newOwner);
    void giveBack();
    void giveBack(const Grant &grant);

    InhibitRequest m_request;
    QDBusServiceWatcher m_watcher;
    int m_lastQuestion = 0; ///< answers to the ones before come from who is no longer the service
    int m_pendingQuestions = 0;
    bool m_isReleased = false;
    std::optional<Grant> m_grant;
};

} // namespace vornic
