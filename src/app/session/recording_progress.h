#pragma once

#include <QRectF>
#include <QString>

#include <cstdint>

namespace vornic {

struct RecordingRoom;

/// What a person sees of a recording that runs.
///
/// Implemented by a front end; called on the main thread only. Everything does nothing by default.
class RecordingProgress
{
public:
    /// The one visible way to stop, with the running clock as its title. \a recorded: what of the screen is
    /// recorded, in screen coordinates (y up).
    virtual void showStopItem(const QString & /*title*/, const QRectF & /*recorded*/) { }
    virtual void setStopItemTitle(const QString & /*title*/) { }
    /// Told before each title of a recording that ends by itself: so many seconds are still to be recorded.
    virtual void showTimeLeft(std::int64_t /*seconds*/) { }
    /// The recording is paused, and the clock stands; or it goes on.
    virtual void showPaused(bool /*isPaused*/) { }
    virtual void hideStopItem() { }
    /// Told about once a second while pictures are kept, until hideStopItem().
    virtual void showRoom(const RecordingRoom & /*room*/) { }
    /// There are less than ten minutes left; once a recording.
    virtual void warnOfLittleRoom(const RecordingRoom & /*room*/) { }
    /// The movie of what is recorded is forecast to be as large as was asked for: the recording ends.
    virtual void sizeIsReached() { }

protected:
    RecordingProgress() = default;
    ~RecordingProgress() = default;
    RecordingProgress(const RecordingProgress &) = default;
    RecordingProgress &operator=(const RecordingProgress &) = default;
};

} // namespace vornic
