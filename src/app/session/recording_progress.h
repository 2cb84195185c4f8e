#pragma once

#include <QRectF>
#include <QString>

#include <cstdint>
#include <functional>

namespace vornic {

struct RecordingRoom;

/// What a person sees of a recording that runs and of the movie that is written.
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
    /// No sound has come for some seconds, and without it no picture is kept; \a goOn records without. \a goOn is
    /// called once at most, and only before hideStopItem().
    virtual void soundIsMissing(const std::function<void()> & /*goOn*/) { }
    /// The sound's input is gone: pictures go on, and so does the sound once the input is there again, which is told with
    /// false.
    virtual void soundIsLost(bool /*isLost*/) { }
    /// Of two sounds, the one called \a name is gone, and the other is heard; false once it is there again.
    virtual void oneSoundIsLost(const QString & /*name*/, bool /*isLost*/) { }
    /// How loud the sound is that is recorded, many times a second: the loudest sample, as a share of the loudest that there
    /// is.
    virtual void showLevel(double /*peak*/) { }
    /// For ten seconds the microphone \a name has given nothing but digital silence: it may be muted. Once a recording.
    virtual void nothingIsHeard(const QString & /*name*/) { }
    /// The movie of what is recorded is forecast to be as large as was asked for: the recording ends.
    virtual void sizeIsReached() { }
    /// It has become larger: it is written again, with a lower bit rate.
    virtual void movieIsWrittenAgain() { }
    /// Calls \a done once the screen shows nothing more of the windows that have just been hidden, at once or later.
    virtual void whenScreenIsClear(std::function<void()> done) { done(); }
    /// Puts the main window and the overlay behind what has just been opened.
    virtual void stepAside() { }
    virtual void minimiseMainWindow() { }
    virtual void bringMainWindowToFront() { }
    /// The busy indicator in the main window.
    virtual void setBusy(bool /*busy*/) { }
    /// What may be edited has changed.
    virtual void reloadData() { }

    /// \a frames: how many the movie will have.
    virtual void beginProgress(std::uint64_t /*frames*/) { }
    /// 0 to 100.
    virtual void setProgress(double /*percent*/) { }
    virtual void endProgress() { }
    /// There is no movie, but the recording \a id stays and can be made into one later.
    virtual void recordingKept(const QString & /*id*/) { }
    /// The movie stands in \a path, because another file came to stand in \a meant while it was recorded.
    virtual void movieRenamed(const QString & /*meant*/, const QString & /*path*/) { }

protected:
    RecordingProgress() = default;
    ~RecordingProgress() = default;
    RecordingProgress(const RecordingProgress &) = default;
    RecordingProgress &operator=(const RecordingProgress &) = default;
};

} // namespace vornic
