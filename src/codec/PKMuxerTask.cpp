#include "codec/PKMuxerTask.h"

#include "base/assertion.h"
#include "base/error.h"
#include "base/main_queue.h"
#include "codec/PKMuxerContext.h"
#include "codec/av_support.h"
#include "codec/movie_failure.h"
#include "codec/movie_writer.h"

#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <stop_token>
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

    void report(std::shared_ptr<PKMuxerTask> self, QLatin1StringView action, QVariant value) const
    {
        main_queue::async(
            [this, self = std::move(self), action, value = std::move(value)] { block(action, value); });
    }
    void run(std::shared_ptr<PKMuxerTask> self);
};

/// The task's thread. The last report takes the reference that keeps the task alive with it.
void PKMuxerTask::Impl::run(std::shared_ptr<PKMuxerTask> self)
{
    pthread_setname_np(pthread_self(), "vornic-movie");
    routeAvLog();
    report(self, PKMuxerTaskActionStart, 0.0);
    ProgressThrottle throttle;
    const ProgressSink progress = [&](double percent) {
        if (throttle.accepts(percent))
            report(self, PKMuxerTaskActionProgress, static_cast<double>(throttle.step()));
    };
    Outcome outcome = writeMovieToItsEnd(*context, *source, progress, stop.get_token());
    main_queue::async([this, self = std::move(self), outcome = std::move(outcome)] {
        thread.join();
        block(outcome.action, outcome.value);
    });
}

std::shared_ptr<PKMuxerTask> PKMuxerTask::create(std::shared_ptr<const PKMuxerContext> context)
{
    return std::shared_ptr<PKMuxerTask>(new PKMuxerTask(std::move(context)));
}

PKMuxerTask::PKMuxerTask(std::shared_ptr<const PKMuxerContext> context)
    : m_impl(
        new Impl { .context = std::move(context), .source = nullptr, .block = {}, .stop = {}, .thread = {} })
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
    m_impl->thread = std::thread(
        [impl = m_impl.get(), self = shared_from_this()]() mutable { impl->run(std::move(self)); });
}

void PKMuxerTask::cancel()
{
    m_impl->stop.request_stop();
}

} // namespace vornic
