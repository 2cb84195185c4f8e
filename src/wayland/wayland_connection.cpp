#include "wayland/wayland_connection.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <utility>

namespace vornic {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds maxAnswerTime { 2 };
constexpr std::uint32_t outputVersion = 4;
constexpr std::uint32_t outputManagerVersion = 3;

/// -1 never is.
bool isReadable(int descriptor)
{
    pollfd watched { descriptor, POLLIN, 0 };
    return poll(&watched, 1, 0) > 0;
}

} // namespace

const wl_registry_listener WaylandConnection::registryListener {
    [](void *data, wl_registry * /*registry*/, std::uint32_t name, const char *kind, std::uint32_t version) {
        static_cast<WaylandConnection *>(data)->globalCame({ name, kind, version });
    },
    [](void *data, wl_registry * /*registry*/, std::uint32_t name) {
        static_cast<WaylandConnection *>(data)->globalWent(name);
    },
};

std::unique_ptr<WaylandConnection> WaylandConnection::open(int borrowedWakeFd)
{
    WaylandPtr<wl_display> display(wl_display_connect(nullptr));
    if (!display)
        return nullptr;
    std::unique_ptr<WaylandConnection> connection(new WaylandConnection(std::move(display), borrowedWakeFd));
    // The first brings what there is, the second what the monitors say of themselves.
    return connection->roundTrip() && connection->roundTrip() ? std::move(connection) : nullptr;
}

WaylandConnection::WaylandConnection(WaylandPtr<wl_display> display, int wakeFd)
    : m_display(std::move(display))
    , m_wakeFd(wakeFd)
    , m_registry(wl_display_get_registry(m_display.get()))
{
    wl_registry_add_listener(m_registry.get(), &registryListener, this);
}

WaylandConnection::~WaylandConnection() = default;

void WaylandConnection::globalCame(Global global)
{
    if (global.kind == wl_output_interface.name)
        m_outputs.add(global.name,
                      WaylandPtr<wl_output>(
                          static_cast<wl_output *>(bindGlobal(global, wl_output_interface, outputVersion))));
    else if (global.kind == zxdg_output_manager_v1_interface.name)
        m_outputs.setManager(WaylandPtr<zxdg_output_manager_v1>(static_cast<zxdg_output_manager_v1 *>(
            bindGlobal(global, zxdg_output_manager_v1_interface, outputManagerVersion))));
    m_globals.push_back(std::move(global));
}

void WaylandConnection::globalWent(std::uint32_t name)
{
    std::erase_if(m_globals, [name](const Global &global) { return global.name == name; });
    m_outputs.remove(name);
}

void *WaylandConnection::bindFirst(const wl_interface &kind, std::uint32_t maxVersion) const
{
    const auto found = std::ranges::find(m_globals, QByteArray(kind.name), &Global::kind);
    return found == m_globals.end() ? nullptr : bindGlobal(*found, kind, maxVersion);
}

void *
WaylandConnection::bindGlobal(const Global &global, const wl_interface &kind, std::uint32_t maxVersion) const
{
    return wl_registry_bind(m_registry.get(), global.name, &kind, std::min(global.version, maxVersion));
}

bool WaylandConnection::dispatch(std::chrono::milliseconds maxWait, int borrowedWakeFd)
{
    wl_display *const display = m_display.get();
    bool hadEvents = false;
    while (wl_display_prepare_read(display) != 0) {
        if (wl_display_dispatch_pending(display) < 0)
            return false;
        hadEvents = true;
    }
    wl_display_flush(display);
    std::array<pollfd, 2> watched { { { wl_display_get_fd(display), POLLIN, 0 },
                                      { borrowedWakeFd, POLLIN, 0 } } };
    const int maxMs = hadEvents ? 0 : static_cast<int>(maxWait.count());
    if (poll(watched.data(), watched.size(), maxMs) > 0 && watched[0].revents != 0)
        wl_display_read_events(display);
    else
        wl_display_cancel_read(display);
    return wl_display_dispatch_pending(display) >= 0;
}

bool WaylandConnection::roundTrip()
{
    static constexpr wl_callback_listener listener { [](void *data, wl_callback *, std::uint32_t) {
        *static_cast<bool *>(data) = true;
    } };
    bool isAnswered = false;
    const WaylandPtr<wl_callback> answer(wl_display_sync(m_display.get()));
    wl_callback_add_listener(answer.get(), &listener, &isAnswered);
    const Clock::time_point deadline = Clock::now() + maxAnswerTime;
    while (!isAnswered) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0 || isReadable(m_wakeFd) || !dispatch(left, m_wakeFd))
            return false;
    }
    return true;
}

} // namespace vornic
