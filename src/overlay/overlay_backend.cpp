#include "overlay/overlay_backend.h"

#include "base/log.h"
#include "overlay/fake_overlay_server.h"
#include "overlay/null_overlay_server.h"
#include "overlay/window_on_top.h"
#ifdef VORNIC_WAYLAND
#    include "overlay/wayland/layer_shell_server.h"
#endif
#ifdef VORNIC_X11
#    include "overlay/x11/x11_overlay_server.h"
#    include "overlay/x11/x11_window_on_top.h"
#    ifdef VORNIC_WAYLAND
#        include "overlay/x11/xwayland_overlay_server.h"
#    endif
#    include "x11/x11_connection.h"
#    include "x11/x11_nesting.h"
#    include "x11/x11_windows.h"
#endif

#include <QByteArray>
#include <QGuiApplication>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <array>

namespace vornic {

namespace {

std::unique_ptr<OverlayServer> createFake(InputReceiver &receiver)
{
    return std::make_unique<FakeOverlayServer>(receiver, FakeOverlayServer::Shown::ByToolkit);
}

std::unique_ptr<OverlayServer> createFakeSurface(InputReceiver &receiver)
{
    return std::make_unique<FakeOverlayServer>(receiver, FakeOverlayServer::Shown::ByServer);
}

std::unique_ptr<OverlayServer> createNull(InputReceiver & /*receiver*/)
{
    return std::make_unique<NullOverlayServer>();
}

/// For desktops that can do nothing for it.
class NoWindowOnTop final : public WindowOnTop
{
};

std::unique_ptr<WindowOnTop> keepNowhere(QWindow & /*window*/)
{
    return std::make_unique<NoWindowOnTop>();
}

#ifdef VORNIC_WAYLAND

/// Whether the toolkit shows its windows on the Wayland desktop that the environment names.
bool isOnWayland()
{
    if (QGuiApplication::platformName().startsWith(u"wayland"))
        return true;
#    ifdef VORNIC_X11
    const auto connection = toolkitConnection() ? X11Connection::open() : nullptr;
    return connection && isInsideWayland(*connection);
#    else
    return false;
#    endif
}

std::unique_ptr<OverlayServer> createLayerShell(InputReceiver &receiver)
{
    return isOnWayland() ? LayerShellServer::create(receiver) : nullptr;
}

/// Windows of the toolkit are none of the layer shell's: the next row may know what to do with them.
std::unique_ptr<WindowOnTop> keepByOthers(QWindow & /*window*/)
{
    return nullptr;
}

#endif

constexpr std::array backendTable {
#ifdef VORNIC_WAYLAND
    OverlayBackendEntry { "layer-shell", true, createLayerShell, keepByOthers },
#    ifdef VORNIC_X11
    OverlayBackendEntry { "xwayland", true, XwaylandOverlayServer::create, keepByOthers },
#    endif
#endif
#ifdef VORNIC_X11
    OverlayBackendEntry { "x11", true, X11OverlayServer::create, X11WindowOnTop::create },
#endif
    OverlayBackendEntry { "fake", false, createFake, keepNowhere },
    OverlayBackendEntry { "fake-surface", false, createFakeSurface, keepNowhere },
    OverlayBackendEntry { "null", true, createNull, keepNowhere },
};

QString listOfIds()
{
    QStringList ids;
    for (const OverlayBackendEntry &entry : backendTable)
        ids += QString::fromUtf8(entry.id.data(), static_cast<qsizetype>(entry.id.size()));
    return ids.join(QStringLiteral(", "));
}

std::unique_ptr<OverlayServer> createForced(const QByteArray &id, InputReceiver &receiver)
{
    const auto entry = std::ranges::find(backendTable, std::string_view(id), &OverlayBackendEntry::id);
    if (entry == backendTable.end())
        logMessage(QStringLiteral("VORNIC_OVERLAY names the overlay backend \"%1\", but there are only: %2.")
                       .arg(QString::fromUtf8(id), listOfIds()));
    else if (auto server = entry->create(receiver))
        return server;
    else
        logMessage(QStringLiteral("The overlay backend \"%1\" that VORNIC_OVERLAY names does not work here.")
                       .arg(QString::fromUtf8(id)));
    return createNull(receiver);
}

} // namespace

std::span<const OverlayBackendEntry> overlayBackends()
{
    return backendTable;
}

std::unique_ptr<OverlayServer> createOverlayServer(InputReceiver &receiver)
{
    if (const QByteArray forced = qgetenv("VORNIC_OVERLAY"); !forced.isEmpty())
        return createForced(forced, receiver);
    for (const OverlayBackendEntry &entry : backendTable) {
        if (!entry.selectedByItself)
            continue;
        if (auto server = entry.create(receiver))
            return server;
    }
    return createNull(receiver);
}

std::unique_ptr<WindowOnTop> WindowOnTop::create(QWindow &window)
{
    const QByteArray forced = qgetenv("VORNIC_OVERLAY");
    for (const OverlayBackendEntry &entry : backendTable) {
        if (forced.isEmpty() ? !entry.selectedByItself : entry.id != std::string_view(forced))
            continue;
        if (auto keeper = entry.keepOnTop(window))
            return keeper;
    }
    return keepNowhere(window);
}

} // namespace vornic
