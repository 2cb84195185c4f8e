#pragma once

#include <QObject>
#include <QString>

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

    /// Asks the instance that runs already to come to the front, or to do \a action where one is given, and
    /// waits for its reply, two seconds at most. False when none comes: that instance hangs, or it has just
    /// ended; in the second case this process tries to become the only one, and isOnly() tells whether it is.
    [[nodiscard]] bool handOver(const QString &action = {});

signals:
    // Another start handed over, or the desktop asked for it. The token lets the window come to the front;
    // empty where there is none.
    void activated(const QString &activationToken);
    void actionAsked(const QString &action, const QString &activationToken);

private:
    void claim();

    bool m_isOnly = false;
};

} // namespace vornic
