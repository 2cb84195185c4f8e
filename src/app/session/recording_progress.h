#pragma once

#include <QRectF>
#include <QString>

#include <cstdint>

namespace vornic {

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
    virtual void hideStopItem() { }
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

protected:
    RecordingProgress() = default;
    ~RecordingProgress() = default;
    RecordingProgress(const RecordingProgress &) = default;
    RecordingProgress &operator=(const RecordingProgress &) = default;
};

} // namespace vornic
