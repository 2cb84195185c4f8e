#include "app/session/disk_watch.h"

#include "app/session/movie_size_limit.h"
#include "app/session/recording_progress.h"
#include "app/session/recording_room.h"
#include "base/PKTimebase.h"
#include "base/free_space.h"
#include "base/thread.h"
#include "capture/spool/VNBufferMgr.h"
#include "codec/PKMuxerContext.h"
#include "codec/movie_place.h"

#include <chrono>
#include <memory>
#include <system_error>
#include <utility>

namespace vornic {

namespace {

constexpr double lookSeconds = 1;
/// With an older answer than this the room is unknown.
constexpr double silenceSeconds = 10;
constexpr double littleSeconds = 10 * 60;

DiskSpace askFileSystems(const QString &spoolFolder, const QString &movieFolder)
{
    return { .spoolFree = freeSpace(spoolFolder),
             .movieFree = freeSpace(movieFolder),
             .isOneVolume = areOnOneVolume(spoolFolder, movieFolder) };
}

QString movieFolder(const PKMuxerContext &movie)
{
    return folderOfMovie(movie.filename());
}

} // namespace

DiskWatch::DiskWatch(VNBufferMgr &spool, RecordingProgress &progress)
    : m_spool(spool)
    , m_progress(progress)
    , m_probe(askFileSystems)
    , m_forecast(VNBufferMgr::limitSpaceForRecord())
{
}

void DiskWatch::begin()
{
    m_forecast = DiskForecast(VNBufferMgr::limitSpaceForRecord());
    m_lookedAt.reset();
    m_spoolFolder = VNBufferMgr::cachePath();
    m_answer = {};
    m_hasWarned = false;
}

void DiskWatch::frameKept(double seconds, std::int64_t timestamp)
{
    if (!m_spool.muxerContext() || (m_lookedAt && seconds - *m_lookedAt < lookSeconds))
        return;
    const bool isFirst = !std::exchange(m_lookedAt, seconds);
    takeAnswer(seconds, timestamp);
    if (!m_answer.valid())
        ask(seconds);
    if (!isFirst)
        tell(seconds);
}

void DiskWatch::takeAnswer(double seconds, std::int64_t timestamp)
{
    if (!m_answer.valid() || m_answer.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
        return;
    m_forecast.add({ .seconds = seconds,
                     .spooledBytes = m_spool.spooledBytes(),
                     .movieSeconds = static_cast<double>(timestamp) / static_cast<double>(PKTimebase),
                     .movieBytesPerSecond = movieBytesPerSecond(*m_spool.muxerContext()),
                     .space = m_answer.get() });
    m_spool.keepFreeForMovie(m_forecast.movieBytesOnSpoolVolume());
}

void DiskWatch::ask(double seconds)
{
    const auto task = std::make_shared<std::packaged_task<DiskSpace()>>(
        [probe = m_probe, spool = m_spoolFolder, movie = movieFolder(*m_spool.muxerContext())] {
            return probe(spool, movie);
        });
    std::future<DiskSpace> answer = task->get_future();
    try {
        startThread("vornic-disk", [task] { (*task)(); }).detach();
    } catch (const std::system_error &) {
        return; // too many threads: asked again in a second
    }
    m_answer = std::move(answer);
    m_askedAt = seconds;
}

void DiskWatch::tell(double seconds)
{
    RecordingRoom told { .spooledBytes = m_spool.spooledBytes(), .seconds = {}, .folder = {} };
    const std::optional<DiskForecast::Room> room = m_forecast.room();
    if (room && seconds - m_askedAt < silenceSeconds) {
        told.seconds = room->seconds;
        told.isForMovie = room->limit == DiskForecast::Limit::Movie;
        told.folder = told.isForMovie ? movieFolder(*m_spool.muxerContext()) : m_spoolFolder;
    }
    m_progress.showRoom(told);
    if (told.seconds && *told.seconds < littleSeconds && !std::exchange(m_hasWarned, true))
        m_progress.warnOfLittleRoom(told);
}

} // namespace vornic
