#include "base/log.h"

#include <cstdio>
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
        if (const int repeats = std::exchange(m_repeats, 0); repeats > 0)
            writeLine(QStringLiteral("(%1 more times)").arg(repeats));
        m_last = message;
        writeLine(message);
    }

private:
    static void writeLine(const QString &text)
    {
        const QByteArray line = "vornic: " + text.toUtf8() + '\n';
        std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stderr);
    }

    std::mutex m_mutex;
    QString m_last;
    int m_repeats = 0;
};

StandardLog &standardLog()
{
    static StandardLog log;
    return log;
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
