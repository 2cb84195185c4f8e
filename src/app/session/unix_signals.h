#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <array>
#include <memory>

namespace vornic {

/// SIGINT, SIGTERM, SIGHUP and SIGQUIT as Qt signals on the main thread.
///
/// At most one exists; made by main after the application object. A SIGHUP that the program was started to ignore, as
/// nohup does, stays ignored. Only the first SIGQUIT comes here: a second one ends the program at once.
class UnixSignals : public QObject
{
    Q_OBJECT
public:
    explicit UnixSignals(QObject *parent = nullptr);
    ~UnixSignals() override;

signals:
    /// To come to an end in an orderly way.
    void terminationAsked(int number);
    /// To end now, and to leave the work for later.
    void leaveAsked();

private:
    void readSignal();

    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace vornic
