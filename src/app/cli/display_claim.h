#pragma once

#include <memory>

namespace vornic {

class CommandLineFrontEnd;
class DisplayBackend;

/// The main display, made ready for a recording: its user may be asked for it, and takes the time that he wants.
///
/// Made by "vornic record" before anything depends on the display's size; lives on the main thread, and lets the display
/// go at its end.
class DisplayClaim
{
public:
    /// Returns once it is known whether the display can be recorded, or a signal has ended the wait; where it cannot,
    /// \a frontEnd has told why. Needs a QCoreApplication.
    explicit DisplayClaim(CommandLineFrontEnd &frontEnd);
    ~DisplayClaim();
    DisplayClaim(const DisplayClaim &) = delete;
    DisplayClaim &operator=(const DisplayClaim &) = delete;

    [[nodiscard]] bool isGranted() const { return m_isGranted; }

private:
    std::shared_ptr<DisplayBackend> m_display;
    bool m_isGranted = false;
};

} // namespace vornic
