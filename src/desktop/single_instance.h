#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <utility>

namespace vornic {

/// Makes this process the program's only instance in the session, or reaches the one that runs already.
///
/// Made by main() after the application object and before the window, on the main thread, where its signals
/// come too. Without a session bus every process is the only one.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    explicit SingleInstance(QObject *parent = nullptr);
    /// The next start can be the only instance then.
    ~SingleInstance() override;
    SingleInstance(const SingleInstance &) = delete;
    SingleInstance &operator=(const SingleInstance &) = delete;

    [[nodiscard]] bool isOnly() const { return m_isOnly; }

    enum class Answer {
        Taken,
        Refused, ///< there is nothing that the action could be done to now
        None,    ///< that instance hangs, or it has just ended
    };

    /// Asks the instance that runs already to come to the front, or to do \a action to \a file where they are given,
    /// and waits for its reply, two seconds at most. When none comes this process tries to become the only one, and
    /// isOnly() tells whether it is.
    [[nodiscard]] Answer handOver(const QString &action = {}, const QString &file = {});

    /// Asked whether an action can be done now; where it cannot, whoever asked for it is told. Without it all can.
    void setActionCheck(std::function<bool(const QString &action)> check) { m_check = std::move(check); }
    [[nodiscard]] bool mayAct(const QString &action) const { return !m_check || m_check(action); }

signals:
    // Another start handed over, or the desktop asked for it. The token lets the window come to the front;
    // empty where there is none.
    void activated(const QString &activationToken);
    void actionAsked(const QString &action, const QString &file, const QString &activationToken);

private:
    void claim();

    bool m_isOnly = false;
    std::function<bool(const QString &)> m_check;
};

} // namespace vornic
