#include "platform/log.h"

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

} // namespace

void logMessage(const QString &message)
{
    LogSink sink;
    {
        const std::lock_guard lock(sinkMutex());
        sink = currentSink();
    }
    if (sink) {
        sink(message);
        return;
    }
    const QByteArray line = "vornic: " + message.toUtf8() + '\n';
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stderr);
}

LogSink setLogSink(LogSink sink)
{
    const std::lock_guard lock(sinkMutex());
    return std::exchange(currentSink(), std::move(sink));
}

} // namespace vornic
