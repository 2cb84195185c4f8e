#pragma once

#include <QStringList>

#include <sys/types.h>

#include <memory>

namespace vornic::test {

/// A program that a test has started. It ends with the object, and also when the test dies.
///
/// Made and destroyed on the test's main thread: the kernel ends the program with the thread that started it.
class ChildProcess
{
public:
    /// \a command is a program of $PATH with its arguments, \a environment "NAME=value" entries in addition
    /// to the test's own; \a inherited is a file descriptor that the program gets under the same number.
    /// Null when no process can be made; a program that is not there exits with 127.
    [[nodiscard]] static std::unique_ptr<ChildProcess>
    start(const QStringList &command, const QStringList &environment = {}, int inherited = -1);
    ~ChildProcess();
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    [[nodiscard]] pid_t pid() const { return m_pid; }
    [[nodiscard]] bool isRunning();
    /// Waits for its end; the exit status, or 128 and the signal that ended it.
    int wait();
    /// Asks it to end with \a signalNumber and waits for it; after some seconds it is killed.
    void stop(int signalNumber = 15);

private:
    explicit ChildProcess(pid_t pid);
    bool reap(bool blocks);

    pid_t m_pid;
    bool m_isReaped = false;
    int m_exitStatus = 0;
};

/// \a command in a shell that appends all that it prints to the file \a log, so that a failing test's own output
/// is not buried under its servers'.
[[nodiscard]] QStringList printingTo(const QString &log, const QStringList &command);
/// The text of \a file without white space at its ends; empty where it cannot be read.
[[nodiscard]] QString contentsOf(const QString &file);

} // namespace vornic::test
