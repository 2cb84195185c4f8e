#pragma once

#include <QFile>
#include <QString>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace vornic::test {

/// A named pipe that nobody writes to, at a path that is free: opening it for reading would block for good.
///
/// Made by tests of what is given the path. A thread of its own lets a reader go at once, with an empty pipe,
/// and remembers it.
class NamedPipe
{
public:
    explicit NamedPipe(const QString &path)
        : m_path(QFile::encodeName(path))
        , m_isMade(::mkfifo(m_path.constData(), 0600) == 0)
        , m_releasing([this] { releaseReaders(); })
    {
    }
    ~NamedPipe() { end(); }
    NamedPipe(const NamedPipe &) = delete;
    NamedPipe &operator=(const NamedPipe &) = delete;

    [[nodiscard]] bool isMade() const { return m_isMade; }
    /// Whether anybody has opened it; from now on readers are no longer let go.
    [[nodiscard]] bool wasOpened()
    {
        end();
        return m_wasOpened;
    }

private:
    void releaseReaders()
    {
        while (!m_ends) {
            // Succeeds only while there is a reader.
            const int writer = ::open(m_path.constData(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
            if (writer >= 0) {
                m_wasOpened = true;
                ::close(writer);
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    void end()
    {
        m_ends = true;
        if (m_releasing.joinable())
            m_releasing.join();
    }

    QByteArray m_path;
    bool m_isMade;
    std::atomic<bool> m_ends = false;
    std::atomic<bool> m_wasOpened = false;
    std::thread m_releasing; ///< last: it uses all of the others
};

} // namespace vornic::test
