#include "codec/PKMuxerTask.h"

#include "base/assertion.h"
#include "base/error.h"
#include "base/main_queue.h"
#include "base/memory_reserve.h"
#include "base/thread.h"
#include "codec/PKMuxerContext.h"
#include "codec/av_support.h"
#include "codec/movie_failure.h"
#include "codec/movie_writer.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <stop_token>
#include <system_error>
#include <thread>
#include <utility>

namespace vornic {

namespace {

/// Accepts whole percents that grow, at most 20 a second.
///
/// Made by a task, used on its thread.
class ProgressThrottle
{
public:
    [[nodiscard]] bool accepts(double percent)
    {
        // 100 % is the finished movie: syncing it to the disk takes time too.
        const int step = std::min(static_cast<int>(std::floor(percent)), 99);
        const auto now = std::chrono::steady_clock::now();
        if (step <= m_step || now - m_last < minInterval)
            return false;
        m_step = step;
        m_last = now;
        return true;
    }
    [[nodiscard]] int step() const { return m_step; }

private:
    static constexpr std::chrono::milliseconds minInterval { 50 };

    int m_step = 0;
    std::chrono::steady_clock::time_point m_last;
};

struct Outcome {
    QLatin1StringView action;
    QVariant value;
};

Outcome failed(const Error &error)
{
    return { PKMuxerTaskActionFailed, QVariant::fromValue(error) };
}

/// Nothing may be thrown out of a thread; whatever goes wrong ends the task with an Error.
Outcome writeMovieToItsEnd(const PKMuxerContext &context,
                           PKMuxerTaskDataSource &source,
                           const ProgressSink &progress,
                           const std::stop_token &stop)
{
    try {
        return { PKMuxerTaskActionComplete,
                 QVariant::fromValue(writeMovie(context, source, progress, stop)) };
    } catch (const MovieFailure &failure) {
        return failed(failure.error());
    } catch (const std::bad_alloc &) {
        return failed({ ErrorKind::OutOfMemory, ErrorSubject::File, context.filename(), {} });
    } catch (const std::exception &failure) {
        return failed(
            { ErrorKind::Failed, ErrorSubject::File, context.filename(), QString::fromUtf8(failure.what()) });
    }
}

} // namespace

struct PKMuxerTask::Impl {
    std::shared_ptr<const PKMuxerContext> context;
    PKMuxerTaskDataSource *source = nullptr;
    ProgressBlock block; ///< called on the main thread
    std::stop_source stop;
    std::thread thread;
    MemoryReserve reserve;
    std::mutex mutex;
    std::condition_variable ended;
    std::optional<bool> hasMovie; ///< guarded; nothing before the end

    void report(std::shared_ptr<PKMuxerTask> self, QLatin1StringView action, QVariant value) const
    {
        main_queue::async(
            [this, self = std::move(self), action, value = std::move(value)] { block(action, value); });
    }
    void reportEnd(std::shared_ptr<PKMuxerTask> self, Outcome outcome);
    void run(const std::shared_ptr<PKMuxerTask> &self);
    void runToItsEnd(const std::shared_ptr<PKMuxerTask> &self);
};

/// Takes the reference that keeps the task alive with it.
void PKMuxerTask::Impl::reportEnd(std::shared_ptr<PKMuxerTask> self, Outcome outcome)
{
    {
        const std::lock_guard lock(mutex);
        if (!hasMovie)
            hasMovie = outcome.action == PKMuxerTaskActionComplete;
    }
    ended.notify_all();
    main_queue::async([this, self = std::move(self), outcome = std::move(outcome)] {
        if (thread.joinable())
            thread.join();
        block(outcome.action, outcome.value);
    });
}

/// The task's thread. Its end is told also where there is no memory to tell anything else.
void PKMuxerTask::Impl::run(const std::shared_ptr<PKMuxerTask> &self)
{
    try {
        runToItsEnd(self);
    } catch (...) {
        reserve.giveBack();
        reportEnd(self, failed({ ErrorKind::OutOfMemory, ErrorSubject::File, context->filename(), {} }));
    }
}

void PKMuxerTask::Impl::runToItsEnd(const std::shared_ptr<PKMuxerTask> &self)
{
    routeAvLog();
    report(self, PKMuxerTaskActionStart, 0.0);
    ProgressThrottle throttle;
    const ProgressSink progress = [&](double percent) {
        if (throttle.accepts(percent))
            report(self, PKMuxerTaskActionProgress, static_cast<double>(throttle.step()));
    };
    reportEnd(self, writeMovieToItsEnd(*context, *source, progress, stop.get_token()));
}

std::shared_ptr<PKMuxerTask> PKMuxerTask::create(std::shared_ptr<const PKMuxerContext> context)
{
    return std::shared_ptr<PKMuxerTask>(new PKMuxerTask(std::move(context)));
}

PKMuxerTask::PKMuxerTask(std::shared_ptr<const PKMuxerContext> context)
    : m_impl(new Impl { .context = std::move(context),
                        .source = nullptr,
                        .block = {},
                        .stop = {},
                        .thread = {},
                        .reserve = {},
                        .mutex = {},
                        .ended = {},
                        .hasMovie = {} })
{
}

PKMuxerTask::~PKMuxerTask()
{
    // Joinable only where the main thread's loop ended before the last report could be delivered.
    std::thread &thread = m_impl->thread;
    if (thread.joinable() && thread.get_id() != std::this_thread::get_id())
        thread.join();
    else if (thread.joinable())
        thread.detach();
}

void PKMuxerTask::setDataSource(PKMuxerTaskDataSource *source)
{
    m_impl->source = source;
}

void PKMuxerTask::startMuxerWithBlock(ProgressBlock block)
{
    if (!m_impl->source || !block || m_impl->block) {
        reportAssertionFailure({ QStringLiteral("startMuxerWithBlock:"),
                                 QStringLiteral("PKMuxerTask"),
                                 0,
                                 QStringLiteral("A task is started once, with a data source and a block.") });
        return;
    }
    m_impl->block = std::move(block);
    try {
        m_impl->thread = startThread("vornic-movie",
                                     [impl = m_impl.get(), self = shared_from_this()] { impl->run(self); });
    } catch (const std::system_error &failure) {
        m_impl->report(shared_from_this(), PKMuxerTaskActionStart, 0.0);
        m_impl->reportEnd(shared_from_this(),
                          failed({ ErrorKind::Failed,
                                   ErrorSubject::File,
                                   m_impl->context->filename(),
                                   QString::fromStdString(failure.code().message()) }));
    }
}

void PKMuxerTask::cancel()
{
    m_impl->stop.request_stop();
}

bool PKMuxerTask::waitForMovie(std::chrono::nanoseconds longest)
{
    std::unique_lock lock(m_impl->mutex);
    m_impl->ended.wait_for(lock, longest, [this] { return m_impl->hasMovie.has_value(); });
    return m_impl->hasMovie.value_or(false);
}

} // namespace vornic
