#pragma once

namespace vornic {

/// Where the toolkit is to show its windows, as long as the object lives: on a Wayland desktop through the X server in it,
/// because the overlay leaves out the program's windows and only that server tells where they are. Where there is none, or
/// the user has chosen, nothing is changed.
///
/// Made around the making of the application object, by main, while there is one thread. Programs that are started later
/// choose for themselves.
class ToolkitPlatform
{
public:
    ToolkitPlatform();
    ~ToolkitPlatform();
    ToolkitPlatform(const ToolkitPlatform &) = delete;
    ToolkitPlatform &operator=(const ToolkitPlatform &) = delete;

private:
    const bool m_isChosen;
};

} // namespace vornic
