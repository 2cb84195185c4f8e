#pragma once

#include "app/session/disk_forecast.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <future>
#include <optional>
#include <utility>

namespace vornic {

class RecordingProgress;
class VNBufferMgr;

/// Looks once a second how much room a recording has, tells it, warns once when it is little, and has the spool leave
/// room for the movie.
///
/// Owned by RecordingSession; main thread only. File systems are asked on a thread that nobody waits for, as one in the
/// network may never answer; then the room is unknown.
class DiskWatch
{
public:
    /// Runs on the other thread, perhaps still when this object is gone.
    using Probe = std::function<DiskSpace(const QString &spoolFolder, const QString &movieFolder)>;

    /// Borrows both for life.
    DiskWatch(VNBufferMgr &spool, RecordingProgress &progress);

    /// For tests: asked in place of the file systems.
    void setProbe(Probe probe) { m_probe = std::move(probe); }
    /// A recording begins, whose movie is that of the spool's muxer context.
    void begin();
    /// A picture is kept, at \a seconds of a clock that stands while the recording is paused, and \a timestamp in PKTimebase
    /// ticks.
    void frameKept(double seconds, std::int64_t timestamp);

private:
    void ask(double seconds);
    void takeAnswer(double seconds, std::int64_t timestamp);
    void tell(double seconds);

    VNBufferMgr &m_spool;
    RecordingProgress &m_progress;
    Probe m_probe;
    DiskForecast m_forecast;
    std::optional<double> m_lookedAt;
    double m_askedAt = 0;
    QString m_spoolFolder;
    std::future<DiskSpace> m_answer; ///< to what was asked last; invalid before
    bool m_hasWarned = false;
};

} // namespace vornic
