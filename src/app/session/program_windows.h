#pragma once

#include <functional>

namespace vornic {

/// The windows of the program itself, which make way for what is recorded.
///
/// Implemented by a front end; called on the main thread only. Everything does nothing by default.
class ProgramWindows
{
public:
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

protected:
    ProgramWindows() = default;
    ~ProgramWindows() = default;
    ProgramWindows(const ProgramWindows &) = default;
    ProgramWindows &operator=(const ProgramWindows &) = default;
};

} // namespace vornic
