#pragma once

#include "overlay/x11/x11_selection_watch.h"

#include <QObject>
#include <QTimer>

namespace vornic {

class X11Connection;
class X11Events;

/// Knows whether some program drags something over the desktop, before it comes over a window of ours.
///
/// Made by OverlayServer; main thread only. A drag begins when its program takes the selection of the XDND
/// protocol; many keep it afterwards, so the drag ends with the mouse's buttons.
class X11DragWatch : public QObject
{
    Q_OBJECT
public:
    /// Borrows \a events for life.
    explicit X11DragWatch(X11Events &events);

    [[nodiscard]] bool isActive() const { return m_buttons.isActive(); }

signals:
    void changed();

private:
    void lookAtButtons();

    X11Connection &m_connection;
    X11Events &m_events;
    X11SelectionWatch m_selection;
    QTimer m_buttons; ///< runs while something is dragged
};

} // namespace vornic
