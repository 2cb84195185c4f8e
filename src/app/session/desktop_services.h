#pragma once

#include <QString>

namespace vornic {

/// What other programs of the desktop do for a recording.
///
/// Implemented by a front end; called on the main thread only. Everything does nothing by default.
class DesktopServices
{
public:
    /// Shows the movie in the file browser.
    virtual void reveal(const QString & /*path*/) { }
    /// Opens a document with its program.
    virtual void open(const QString & /*path*/) { }
    /// The movie is complete: \a seconds of it, in \a path. \a flaws: sentences on what is missing in it; empty where
    /// nothing is.
    virtual void announceMovie(const QString & /*path*/, double /*seconds*/, const QString & /*flaws*/) { }
    /// Whether the desktop must stay awake now: while the screen is recorded, and the movie written.
    virtual void inhibitIdle(bool /*inhibits*/) { }

protected:
    DesktopServices() = default;
    ~DesktopServices() = default;
    DesktopServices(const DesktopServices &) = default;
    DesktopServices &operator=(const DesktopServices &) = default;
};

} // namespace vornic
