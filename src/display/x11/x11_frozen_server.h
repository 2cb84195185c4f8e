#pragma once

#include <atomic>
#include <functional>
#include <memory>

namespace vornic {

/// For a server that does not answer: calls \a reconnect, which returns when it takes new connections, or is gone, on a
/// thread of its own that may never end.
///
/// Meanwhile the main thread may come to wait for the server too, in the toolkit, where nothing can be told to a program
/// any more, not even to end. When it has not been back in its loop for ten seconds, all connections are closed, which
/// ends the program. Any thread.
void awaitFrozenServer(std::function<void()> reconnect);

/// A thread that watches whether the main thread comes to its loop, by looking again and again. Not for the main thread.
class MainThreadWatch
{
public:
    /// Counts as one look. True when the main thread has been in its loop since the first.
    [[nodiscard]] bool isBack();
    /// The looks that it has been away.
    [[nodiscard]] int looks() const { return m_looks; }

private:
    std::shared_ptr<std::atomic<bool>> m_sign; ///< null before the first look
    int m_looks = 0;
};

/// Closes all connections, the toolkit's too, where the server takes no new one within two seconds.
void closeAllIfFrozen();

/// The same, at the end of a program: the toolkit takes leave of the server and waits for an answer.
void leaveFrozenServer();

} // namespace vornic
