#pragma once

#include <atomic>
#include <chrono>
#include <thread>

namespace vornic {

class WaylandConnection;

/// A surface of one pixel at the upper left of each monitor, wholly transparent and without mouse or keys. It makes a
/// compositor draw a screen that stands still, some of which tell a new watcher of nothing before they do.
///
/// Made by who waits for a first picture, on any thread. It has a thread of its own, which alone waits for the compositor.
class TransparentPixel
{
public:
    enum class State {
        Waiting, ///< for the compositor
        Shown,
        Over, ///< also where the compositor offers no such surfaces, or has not answered within some seconds
    };

    /// Returns at once; shows it for \a time as soon as the compositor lets it.
    explicit TransparentPixel(std::chrono::milliseconds time);
    /// Takes it away, without an answer of the compositor.
    ~TransparentPixel();
    TransparentPixel(const TransparentPixel &) = delete;
    TransparentPixel &operator=(const TransparentPixel &) = delete;

    /// Any thread.
    [[nodiscard]] State state() const { return m_state; }

private:
    void run(std::chrono::milliseconds time);
    void show(WaylandConnection &connection, std::chrono::milliseconds time);

    std::atomic<State> m_state = State::Waiting;
    const int m_wakeFd; ///< readable: the thread is to end
    std::thread m_thread;
};

} // namespace vornic
