#pragma once

#include <memory>
#include <span>
#include <string_view>

class QWindow;

namespace vornic {

class InputReceiver;
class OverlayServer;
class WindowOnTop;

/// One row of the table of backends, one for each kind of desktop.
struct OverlayBackendEntry {
    std::string_view id;   ///< as in the environment variable VORNIC_OVERLAY
    bool selectedByItself; ///< false: only when asked for by its id
    /// The backend, which borrows the receiver for life; null where the desktop is of another kind.
    std::unique_ptr<OverlayServer> (*create)(InputReceiver &receiver);
    /// The object that keeps a window on top there, as WindowOnTop::create(); null as above.
    std::unique_ptr<WindowOnTop> (*keepOnTop)(QWindow &window);
};

/// All backends, best first.
[[nodiscard]] std::span<const OverlayBackendEntry> overlayBackends();

/// A server for one overlay window, which borrows \a receiver for life; never null. Main thread only.
///
/// The environment variable VORNIC_OVERLAY forces a backend by id. Where none works it is the null backend:
/// the overlay then is an ordinary window of the toolkit.
[[nodiscard]] std::unique_ptr<OverlayServer> createOverlayServer(InputReceiver &receiver);

} // namespace vornic
