#pragma once

#include <QObject>

class QSocketNotifier;

namespace vornic {

class WaylandConnection;

/// Handles the events of a connection in the toolkit's loop.
///
/// Made by whoever made the connection for the main thread; main thread only.
class WaylandEvents : public QObject
{
    Q_OBJECT
public:
    /// Borrows \a connection for life; nobody else handles its events, but for round trips.
    explicit WaylandEvents(WaylandConnection &connection);
    ~WaylandEvents() override;

signals:
    /// The compositor is gone; comes once.
    void ended();

private:
    void handle();

    WaylandConnection &m_connection;
    QSocketNotifier *m_notifier;
};

} // namespace vornic
