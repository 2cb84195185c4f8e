#include "wayland/wayland_output_watch.h"

#include "base/thread.h"
#include "wayland/wayland_connection.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <chrono>
#include <utility>

namespace vornic {

std::unique_ptr<WaylandOutputWatch> WaylandOutputWatch::start(std::function<void()> changed)
{
    auto connection = WaylandConnection::open();
    return connection ? std::unique_ptr<WaylandOutputWatch>(
               new WaylandOutputWatch(std::move(connection), std::move(changed)))
                      : nullptr;
}

WaylandOutputWatch::WaylandOutputWatch(std::unique_ptr<WaylandConnection> connection,
                                       std::function<void()> changed)
    : m_connection(std::move(connection))
    , m_changed(std::move(changed))
    , m_outputs(m_connection->outputs().all())
    , m_wakeFd(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    m_connection->outputs().onChange([this] { learn(m_connection->outputs().all()); });
    m_thread = startThread("vornic outputs", [this] { run(); });
}

WaylandOutputWatch::~WaylandOutputWatch()
{
    eventfd_write(m_wakeFd, 1);
    m_thread.join();
    close(m_wakeFd);
}

std::vector<WaylandOutput> WaylandOutputWatch::outputs() const
{
    const std::lock_guard lock(m_mutex);
    return m_outputs;
}

void WaylandOutputWatch::run()
{
    constexpr std::chrono::hours forLong(1);
    eventfd_t isToEnd = 0;
    while (m_connection->dispatch(forLong, m_wakeFd)) {
        if (eventfd_read(m_wakeFd, &isToEnd) == 0)
            return;
    }
    learn({});
}

void WaylandOutputWatch::learn(std::vector<WaylandOutput> outputs)
{
    {
        const std::lock_guard lock(m_mutex);
        m_outputs = std::move(outputs);
    }
    if (m_changed)
        m_changed();
}

} // namespace vornic
