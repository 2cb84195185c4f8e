#pragma once

#include "overlay/window_on_top.h"
#include "overlay/x11/x11_stacking.h"
#include "x11/x11_connection.h"
#include "x11/x11_events.h"

#include <QPointer>

#include <memory>

namespace vornic {

/// Keeps a window on top of an X11 desktop.
///
/// Made by the table of backends; main thread only. Has a connection of its own to the server.
class X11WindowOnTop final : public WindowOnTop
{
    Q_OBJECT
public:
    /// Null where the toolkit's windows are not those of an X server.
    [[nodiscard]] static std::unique_ptr<WindowOnTop> create(QWindow &window);

protected:
    /// The toolkit makes its windows anew when their flags are changed.
    bool eventFilter(QObject *window, QEvent *event) override;

private:
    X11WindowOnTop(std::unique_ptr<X11Connection> connection, QWindow &window);
    void keepOnTop();

    std::unique_ptr<X11Connection> m_connection;
    X11Events m_events;
    X11Stacking m_stacking;
    QPointer<QWindow> m_window;
};

} // namespace vornic
