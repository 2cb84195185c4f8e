#pragma once

#include <QObject>

#include <xcb/xcb.h>

class QSocketNotifier;

namespace vornic {

class X11Connection;

/// Brings the events of a connection of ours to the toolkit's loop.
///
/// Made by X11OverlayServer; main thread only. Nothing that is watched or made through that connection
/// disturbs the toolkit. When the server is gone no more events come.
class X11Events : public QObject
{
    Q_OBJECT
public:
    /// Borrows \a connection for life; nobody else reads its events.
    explicit X11Events(X11Connection &connection);
    ~X11Events() override;

    [[nodiscard]] X11Connection &connection() const { return m_connection; }
    /// Sends the requests that are waiting, and soon reads the events that came with replies.
    void flush();

signals:
    /// Valid during the call.
    void eventRead(const xcb_generic_event_t &event);

private:
    void readEvents();

    X11Connection &m_connection;
    QSocketNotifier *m_notifier;
};

/// The kind of \a event, whoever sent it.
[[nodiscard]] inline int kindOf(const xcb_generic_event_t &event)
{
    constexpr int sentByClient = 0x80;
    return event.response_type & ~sentByClient;
}

/// What \a event is, once its kind is known.
template<typename Event>
[[nodiscard]] const Event &as(const xcb_generic_event_t &event)
{
    return reinterpret_cast<const Event &>(event);
}

} // namespace vornic
