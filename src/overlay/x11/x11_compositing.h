#pragma once

#include "overlay/x11/x11_selection_watch.h"

#include <QObject>

namespace vornic {

class X11Events;

/// Knows whether a compositing manager runs; they come and go.
///
/// Made by OverlayServer; main thread only.
class X11Compositing : public QObject
{
    Q_OBJECT
public:
    /// Borrows \a events for life.
    explicit X11Compositing(X11Events &events);

    [[nodiscard]] bool isActive() const { return m_isActive; }

signals:
    void changed();

private:
    X11SelectionWatch m_manager;
    bool m_isActive;
};

} // namespace vornic
