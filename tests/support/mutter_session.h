#pragma once

#include "support/session_programs.h"

#include <QSize>
#include <QString>

#include <memory>

namespace vornic::test {

/// GNOME's Wayland desktop without hardware and without its shell, of the test's own: the compositor mutter with one
/// monitor and an X server inside, PipeWire, and the desktop's portal. It is drawn without a GPU, so slowly that moving
/// pictures must be small.
///
/// Made and destroyed on the test's main thread. Any number of them may run at once, also as root.
class MutterSession
{
public:
    struct Options {
        QSize size { 1280, 720 }; ///< device pixels
        /// Of logical coordinates; one that leaves whole numbers of them, and 800 x 480 at least.
        double scale = 1;
    };

    /// Whether all of its programs are; they are large, and not needed for anything else.
    [[nodiscard]] static bool isInstalled();
    /// Returns once programs can be shown and record; $WAYLAND_DISPLAY and $DISPLAY of this process are its own until the
    /// object ends. Null, with the reason on standard error, when something does not come up.
    [[nodiscard]] static std::unique_ptr<MutterSession> start(const Options &options);
    [[nodiscard]] static std::unique_ptr<MutterSession> start() { return start(Options()); }

    /// A private folder, which goes with the session.
    [[nodiscard]] QString filePath(const QString &name) const { return m_programs.filePath(name); }
    /// By this the portal knows a user who was asked once and chose the monitor; good for one recording.
    static const QString consentToken;

private:
    MutterSession();
    void writeSettings(const Options &options) const;
    [[nodiscard]] bool startCompositor(const Options &options);
    [[nodiscard]] bool readNames();

    SessionPrograms m_programs;
};

} // namespace vornic::test
