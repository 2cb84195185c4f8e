#pragma once

#include <QObject>
#include <QString>

namespace vornic {

/// Makes the process the only one of this program in the session, or reaches the one that is.
///
/// Made by main() after the application object and before the window, on the main thread, where its signals
/// come too. Without a session bus every process is the only one.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    explicit SingleInstance(QObject *parent = nullptr);
    /// Leaves the place to the next start.
    ~SingleInstance() override;
    SingleInstance(const SingleInstance &) = delete;
    SingleInstance &operator=(const SingleInstance &) = delete;

    [[nodiscard]] bool isOnly() const { return m_isOnly; }

    /// Asks the process that is the only one to come to the front (\a action empty) or to do \a action, and
    /// waits for it, two seconds at most. False when it did not take it: it hangs, or it has just ended, and
    /// then this process has its place if nobody was faster.
    [[nodiscard]] bool handOver(const QString &action = {});

signals:
    // Another start handed over, or the desktop asked. The token lets the window come to the front; empty
    // where there is none.
    void activated(const QString &activationToken);
    void actionAsked(const QString &action, const QString &activationToken);

private:
    void claim();

    bool m_isOnly = false;
};

} // namespace vornic
