#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <array>
#include <functional>
#include <memory>

namespace vornic {

class SignalWatch;

/// SIGINT, SIGTERM, SIGHUP, SIGQUIT and SIGUSR1 as Qt signals on the main thread.
///
/// At most one exists; made by main after the application object. A SIGHUP that the program was started to ignore, as
/// nohup does, stays ignored. Only the first SIGQUIT comes here: a second one ends the program at once.
class UnixSignals : public QObject
{
    Q_OBJECT
public:
    /// \a unheard is called, on another thread, when the main thread has not heard of one for ten seconds.
    explicit UnixSignals(std::function<void()> unheard = {}, QObject *parent = nullptr);
    ~UnixSignals() override;

signals:
    /// To come to an end in an orderly way.
    void terminationAsked(int number);
    /// To end now, and to leave the work for later.
    void leaveAsked();
    /// To pause what is recorded, or to go on with it.
    void pauseAsked();

private:
    void readSignal();

    std::unique_ptr<QSocketNotifier> m_notifier;
    std::unique_ptr<SignalWatch> m_watch; ///< null where nobody wants to know
};

} // namespace vornic
