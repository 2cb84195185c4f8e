#pragma once

#include <QHash>
#include <QObject>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

class QSocketNotifier;

namespace vornic {

struct XcbFree {
    void operator()(void *reply) const { std::free(reply); }
};

/// A reply or event of the X server.
template<typename T>
using XcbOwned = std::unique_ptr<T, XcbFree>;

/// A connection to the X server beside the toolkit's, whose events reach the toolkit's loop.
///
/// Made by OverlayServer; main thread only. Nothing that is watched or made through it disturbs the toolkit.
/// When the server is gone it stays a valid object: requests then do nothing and replies are null.
class X11Link : public QObject
{
    Q_OBJECT
public:
    /// Connects to $DISPLAY; null without a server.
    [[nodiscard]] static std::unique_ptr<X11Link> open();
    ~X11Link() override;

    [[nodiscard]] xcb_connection_t *get() const { return m_connection; }
    [[nodiscard]] xcb_window_t root() const { return m_screen->root; }
    [[nodiscard]] int screenNumber() const { return m_screenNumber; }
    /// Blocks for one exchange when it is asked for the first time.
    [[nodiscard]] xcb_atom_t atom(const QByteArray &name);
    /// Sends what is waiting, and soon reads events that came with replies.
    void flush();

signals:
    /// Valid during the call.
    void eventRead(const xcb_generic_event_t &event);

private:
    X11Link(xcb_connection_t *connection, int screenNumber);
    void readEvents();

    xcb_connection_t *m_connection;
    const xcb_screen_t *m_screen;
    int m_screenNumber;
    QHash<QByteArray, xcb_atom_t> m_atoms; ///< those that were asked for
    QSocketNotifier *m_notifier;
};

/// The kind of \a event, whoever sent it.
[[nodiscard]] inline int kindOf(const xcb_generic_event_t &event)
{
    return event.response_type & 0x7f;
}

/// What \a event is, once its kind is known.
template<typename Event>
[[nodiscard]] const Event &as(const xcb_generic_event_t &event)
{
    return reinterpret_cast<const Event &>(event);
}

} // namespace vornic
