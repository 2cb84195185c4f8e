#include "base/log.h"

#include "base/error_stream.h"

#include <cstdlib>
#include <mutex>
#include <utility>

namespace vornic {

namespace {

std::mutex &sinkMutex()
{
    static std::mutex mutex;
    return mutex;
}

LogSink &currentSink()
{
    static LogSink sink;
    return sink;
}

/// Standard error. A line that is logged again and again, many times a second at worst, is written once.
class StandardLog
{
public:
    void write(const QString &message)
    {
        const std::lock_guard lock(m_mutex);
        if (message == m_last) {
            ++m_repeats;
            return;
        }
        writeRepeats();
        m_last = message;
        writeLine(message);
    }

    /// No more lines are awaited.
    void end()
    {
        const std::lock_guard lock(m_mutex);
        writeRepeats();
    }

private:
    void writeRepeats()
    {
        if (const int repeats = std::exchange(m_repeats, 0); repeats > 0)
            writeLine(QStringLiteral("(%1 more times)").arg(repeats));
    }

    static void writeLine(const QString &text)
    {
        standardError().writeLine(QStringLiteral("vornic: ") + text);
    }

    std::mutex m_mutex;
    QString m_last;
    int m_repeats = 0;
};

StandardLog &standardLog()
{
    // Never destroyed: other threads may log until the very end.
    static StandardLog *const log = [] {
        static_cast<void>(standardError()); // which is so written out behind the log
        std::atexit([] { standardLog().end(); });
        return new StandardLog;
    }();
    return *log;
}

} // namespace

void logMessage(const QString &message)
{
    LogSink sink;
    {
        const std::lock_guard lock(sinkMutex());
        sink = currentSink();
    }
    if (sink)
        sink(message);
    else
        standardLog().write(message);
}

LogSink setLogSink(LogSink sink)
{
    const std::lock_guard lock(sinkMutex());
    return std::exchange(currentSink(), std::move(sink));
}

} // namespace vornic
