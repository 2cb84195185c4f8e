#pragma once

#include <QFont>
#include <QRectF>
#include <QString>

#include <cstdint>
#include <functional>
#include <optional>

namespace vornic {

/// What a person sees of a recording, and answers: the window, or the command line.
///
/// Owned by main, lent to the application delegate. Called on the main thread only; answers may come during
/// the call or later, each once at most. Everything does nothing by default, and questions get the answer
/// that goes on.
class FrontEnd
{
public:
    /// The responses of a sheet.
    static constexpr int responseStop = -1000;
    static constexpr int responseContinue = -1002;

    virtual ~FrontEnd() = default;
    FrontEnd(const FrontEnd &) = delete;
    FrontEnd &operator=(const FrontEnd &) = delete;

    /// Too little space is free: true goes on all the same.
    virtual void askAboutFreeSpace(std::function<void(bool goOn)> answer) { answer(true); }
    /// Asks for the movie's file, of the one type \a type; nothing when the user thinks better of it.
    virtual void runSavePanel(const QString &name,
                              const QString &type,
                              std::function<void(std::optional<QString> path)> answer)
        = 0;
    /// How a recording is stopped, told before it starts.
    virtual void showHint(std::function<void(int response)> answer) { answer(responseContinue); }

    /// The one visible way to stop, with the running clock as its title. \a recorded: what of the screen is
    /// recorded, in its coordinates (y up).
    virtual void showStopItem(const QString & /*title*/, const QRectF & /*recorded*/) { }
    virtual void setStopItemTitle(const QString & /*title*/) { }
    virtual void hideStopItem() { }
    virtual void minimiseMainWindow() { }
    virtual void bringMainWindowToFront() { }
    /// The busy indicator in the main window.
    virtual void setSaving(bool /*saving*/) { }
    /// What may be edited has changed.
    virtual void reloadData() { }

    /// The movie could not be written, but the recording is still there: another file for it, or nothing to
    /// give the recording up.
    virtual void askForOtherFile(const QString & /*type*/,
                                 std::function<void(std::optional<QString> path)> answer)
    {
        answer(std::nullopt);
    }

    /// \a frames: how many the movie will have.
    virtual void beginProgress(std::uint64_t /*frames*/) { }
    /// 0 to 100.
    virtual void setProgress(double /*percent*/) { }
    virtual void endProgress() { }

    /// Blocks until the user has read it.
    virtual void alert(const QString &message, const QString &informativeText) = 0;
    /// True when the user wants to quit although a recording runs. Blocks.
    [[nodiscard]] virtual bool confirmQuit(const QString & /*message*/, const QString & /*informativeText*/)
    {
        return true;
    }
    /// Shows the movie in the file browser; opens it with its program.
    virtual void reveal(const QString & /*path*/) { }
    virtual void open(const QString & /*path*/) { }
    /// The movie is complete: \a seconds of it, in \a path.
    virtual void announceMovie(const QString & /*path*/, double /*seconds*/) { }
    /// Whether the desktop must stay awake now: while the screen is recorded, and the movie written.
    virtual void inhibitIdle(bool /*inhibits*/) { }

    /// Asks for the logo's picture; nothing when the user thinks better of it.
    virtual void chooseLogoImage(std::function<void(std::optional<QString> path)> answer)
    {
        answer(std::nullopt);
    }
    /// Opens the font panel with \a selected; \a changed gets each font that is tried in it.
    virtual void orderFrontFontPanel(const QFont & /*selected*/,
                                     std::function<void(const QFont &font)> /*changed*/)
    {
    }

protected:
    FrontEnd() = default;
};

} // namespace vornic
