#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <stop_token>
#include <thread>

namespace vornic {

/// Lines for a person, written by a thread of its own: a terminal that is stopped, or a pipe that nobody reads, holds up
/// nobody who has something to tell.
///
/// One for the process (standardError()); tests make others. Every function may be called from any thread, and none
/// but flush() waits. What cannot be written for so long that a mebibyte has gathered is dropped.
class ErrorStream
{
public:
    /// Borrows \a descriptor.
    explicit ErrorStream(int descriptor);
    ~ErrorStream();
    ErrorStream(const ErrorStream &) = delete;
    ErrorStream &operator=(const ErrorStream &) = delete;

    /// A line of its own, made printable; behind a redrawn one the next.
    void writeLine(const QString &line);
    /// In place of the line that was redrawn before. Of those that follow each other before they can be written only
    /// the last one is.
    void redraw(const QString &line);
    void endRedrawnLine();
    /// Waits until everything is written, for \a longest at most; whether it is.
    bool flush(std::chrono::nanoseconds longest);

private:
    struct Piece {
        QByteArray bytes;
        bool isRedrawn = false;
    };

    void add(Piece piece);
    void writeAll(const std::stop_token &stop);
    void write(const QByteArray &bytes, const std::stop_token &stop) const;
    [[nodiscard]] QByteArray lineEnd();

    int m_descriptor;
    std::mutex m_mutex; ///< guards what follows; held for a copy only
    std::condition_variable_any m_changed;
    std::deque<Piece> m_waiting;
    qsizetype m_waitingBytes = 0;
    bool m_isWriting = false;
    bool m_lineIsOpen = false; ///< once all that waits is written
    std::stop_source m_stop;
    std::thread m_thread; ///< last: it uses all of it; none where the system has no more
};

/// The process's standard error. What was told is written before a process ends that calls exit(), if somebody takes it
/// within two seconds.
[[nodiscard]] ErrorStream &standardError();

} // namespace vornic
