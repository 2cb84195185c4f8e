#include "base/thread.h"

#include "base/exception_text.h"
#include "base/log.h"

#include <pthread.h>

#include <exception>
#include <latch>
#include <string>
#include <utility>
#include <vector>

namespace vornic {

namespace {

constexpr std::size_t maxNameLength = 15; // what the system keeps of it

} // namespace

void logUnhandledException(std::string_view where) noexcept
{
    try {
        logMessage(QStringLiteral("An error was not handled in %1: %2")
                       .arg(QString::fromUtf8(where.data(), static_cast<qsizetype>(where.size())),
                            textOfHandledException()));
    } catch (...) { // nobody can be told
    }
}

std::thread startThread(std::string_view name, std::function<void()> work)
{
    return std::thread([name = std::string(name), work = std::move(work)] {
        if (!name.empty())
            pthread_setname_np(pthread_self(), name.substr(0, maxNameLength).c_str());
        runGuarded(name, work);
    });
}

bool areThreadsAvailable(int count)
{
    std::latch release(1);
    std::vector<std::thread> threads;
    try {
        threads.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i)
            threads.push_back(startThread({}, [&release] { release.wait(); }));
    } catch (const std::exception &) { // as many as there are
    }
    release.count_down();
    for (std::thread &thread : threads)
        thread.join();
    return static_cast<int>(threads.size()) == count;
}

} // namespace vornic
