#pragma once

#include <QByteArray>

#include <functional>
#include <memory>

struct pa_context;
struct pa_threaded_mainloop;
struct pa_time_event;

namespace vornic {

/// A connection to the desktop's sound server that is made again whenever it breaks.
///
/// Owned by PKAudioControl. It has a thread of its own; what it returns may be used on that thread, or under a
/// Lock.
class PulseConnection
{
public:
    /// Keeps the connection's thread from running callbacks. On that thread itself it does nothing.
    class Lock
    {
    public:
        explicit Lock(PulseConnection &connection);
        ~Lock();
        Lock(const Lock &) = delete;
        Lock &operator=(const Lock &) = delete;

    private:
        pa_threaded_mainloop *m_loop; ///< null: nothing to unlock
    };

    /// Is for \a server, or for the desktop's own when it is empty. \a onChange runs on the connection's
    /// thread whenever the connection has become ready or was lost.
    PulseConnection(QByteArray server, std::function<void()> onChange);
    ~PulseConnection();
    PulseConnection(const PulseConnection &) = delete;
    PulseConnection &operator=(const PulseConnection &) = delete;

    void start();
    /// Null while there is no server. Under a Lock.
    [[nodiscard]] pa_context *readyContext() const;
    /// Lets the thread run until \a holds or the absolute clock shows \a deadline; whether it holds. Under a
    /// Lock, on any thread but the connection's.
    bool waitUntil(double deadline, const std::function<bool()> &holds);
    /// Wakes those that wait, to look again. Under a Lock.
    void wake();
    [[nodiscard]] bool isOwnThread() const;

private:
    void connect(bool mayStartServer);
    void connectLater();
    void dropContext();
    void contextChanged();

    QByteArray m_server;
    std::function<void()> m_onChange;
    pa_threaded_mainloop *m_loop;
    pa_context *m_context = nullptr;
    pa_time_event *m_retry = nullptr;
};

} // namespace vornic
