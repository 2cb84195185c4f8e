#pragma once

#include "base/error.h"
#include "capture/spool/VNBufferMgr.h"
#include "codec/movie_statistics.h"
#include "display/display_backend.h"

#include <QImage>
#include <QPoint>
#include <QSize>
#include <QString>
#include <QTemporaryDir>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace vornic {
class BitmapImage;
class FakeDisplay;
class PKVideoFrame2;
} // namespace vornic

namespace vornic::test {

/// How the writing of a movie went.
struct WrittenMovie {
    std::optional<Error> failure; ///< why there is no movie
    MovieStatistics statistics;
};

/// A recording of made up pictures, pointers and times. They go through a spool of its own, and the movie is made of
/// them as the program does it.
///
/// Made on the main thread, beside a QGuiApplication, and used there; only one at a time, since it is the main display.
class SpooledMovie
{
public:
    using ProgressSink = std::function<void(double percent)>;
    using FrameSink = std::function<void(const PKVideoFrame2 &frame)>;

    explicit SpooledMovie(QSize size);
    ~SpooledMovie();
    SpooledMovie(const SpooledMovie &) = delete;
    SpooledMovie &operator=(const SpooledMovie &) = delete;

    /// What the screen shows from now on. Rows that are the same as before are known to be so.
    void setPicture(const QImage &picture);
    /// Where the pointer is, in pixels from the top left; outside of the picture it is not drawn.
    void setPointer(QPoint position);
    void setPointerShape(CursorShape shape);
    /// Records what the screen shows, at \a ticks.
    void record(std::int64_t ticks);
    /// No record follows.
    void end();

    /// Bits a second that movies aim at; those of the high quality otherwise.
    void setBitRate(std::int32_t bitsASecond) { m_bitRate = bitsASecond; }
    /// Writes the movie and runs the main thread's loop meanwhile. May be called again.
    WrittenMovie write(const QString &file, const ProgressSink &progress = {});
    /// The frames that the encoder is given for the records, with their times.
    void readBack(const FrameSink &sink);

    [[nodiscard]] std::uint64_t spooledBytes() const { return m_spool.spooledBytes(); }

private:
    QTemporaryDir m_cache;
    QSize m_size;
    std::shared_ptr<FakeDisplay> m_display;
    std::shared_ptr<const BitmapImage> m_grabbed; ///< null where the screen shows something else since
    std::int32_t m_bitRate;
    VNBufferMgr m_spool;
};

} // namespace vornic::test
