#pragma once

#include <QLatin1StringView>
#include <QString>
#include <QVariant>

#include <chrono>
#include <functional>
#include <memory>

namespace vornic {

class PKMuxerContext;
class PKMuxerTaskDataSource;

/// What a task tells its block, in this order. Exactly one of Complete and Failed is told, as the last.
inline constexpr QLatin1StringView PKMuxerTaskActionStart { "PKMuxerTaskActionStart" }; ///< value: 0.0
/// Value: percent as a double, whole steps that only grow, at most 20 a second.
inline constexpr QLatin1StringView PKMuxerTaskActionProgress { "PKMuxerTaskActionProgress" };
/// The movie stands under its name. Value: its MovieStatistics.
inline constexpr QLatin1StringView PKMuxerTaskActionComplete { "PKMuxerTaskActionComplete" };
/// No movie was written and nothing of it is left. Value: why, as an Error.
inline constexpr QLatin1StringView PKMuxerTaskActionFailed { "PKMuxerTaskActionFailed" };

/// One movie being written from a data source, on threads of its own.
///
/// Made and started on any thread. It keeps itself alive until it has reported its end.
class PKMuxerTask : public std::enable_shared_from_this<PKMuxerTask>
{
public:
    using ProgressBlock = std::function<void(const QString &action, const QVariant &value)>;

    [[nodiscard]] static std::shared_ptr<PKMuxerTask> create(std::shared_ptr<const PKMuxerContext> context);
    ~PKMuxerTask();
    PKMuxerTask(const PKMuxerTask &) = delete;
    PKMuxerTask &operator=(const PKMuxerTask &) = delete;

    /// Borrowed; it must live until the task has reported its end.
    void setDataSource(PKMuxerTaskDataSource *source);
    /// Starts the work and returns. \a block runs on the main thread only, which must run its event loop. A
    /// task is started once, with a data source set; anything else is an assertion failure and does nothing.
    void startMuxerWithBlock(ProgressBlock block);
    /// Any thread, at any time: the task fails as ErrorKind::Cancelled as soon as the running calls of its data source
    /// have returned. Does nothing once the movie stands under its name.
    void cancel();
    /// Waits until the work has ended, reported or not, for \a longest at most. Whether the movie stands under its name.
    /// Any thread.
    [[nodiscard]] bool waitForMovie(std::chrono::nanoseconds longest);

private:
    explicit PKMuxerTask(std::shared_ptr<const PKMuxerContext> context);

    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace vornic
