#pragma once

#include "wayland/wayland_output.h"

#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace vornic {

class WaylandConnection;

/// Knows at any time which monitors there are.
///
/// Made by who needs them on several threads; every function may be called from any thread. It has a thread of its
/// own, which handles the events of a connection of its own and ends with the object.
class WaylandOutputWatch
{
public:
    /// Returns once the monitors are known; null where no compositor answers within two seconds. From then on
    /// \a changed is called whenever outputs() is another answer, on the watch's own thread and without a lock; empty:
    /// nobody.
    [[nodiscard]] static std::unique_ptr<WaylandOutputWatch> start(std::function<void()> changed = {});
    ~WaylandOutputWatch();
    WaylandOutputWatch(const WaylandOutputWatch &) = delete;
    WaylandOutputWatch &operator=(const WaylandOutputWatch &) = delete;

    /// Empty once the compositor is gone.
    [[nodiscard]] std::vector<WaylandOutput> outputs() const;

private:
    WaylandOutputWatch(std::unique_ptr<WaylandConnection> connection, std::function<void()> changed);
    void run();
    void learn(std::vector<WaylandOutput> outputs);

    std::unique_ptr<WaylandConnection> m_connection; ///< the thread's, while that runs
    const std::function<void()> m_changed;
    mutable std::mutex m_mutex; ///< guards the next
    std::vector<WaylandOutput> m_outputs;
    int m_wakeFd; ///< readable: the thread is to end
    std::thread m_thread;
};

} // namespace vornic
