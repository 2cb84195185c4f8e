#pragma once

#include "support/child_process.h"
#include "support/scoped_environment.h"

#include <QImage>
#include <QPoint>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

namespace vornic::test {

/// A Wayland desktop without hardware, of the test's own: the compositor sway with one monitor, HEADLESS-1, on which
/// windows float without decoration above one colour. It is drawn without a GPU.
///
/// Made and destroyed on the test's main thread. Any number of them may run at once, also as root.
class SwaySession
{
public:
    struct Options {
        QSize size { 1280, 720 };  ///< device pixels
        double scale = 1;          ///< of logical coordinates
        bool hasXwayland = false;  ///< $DISPLAY is set, too
        QStringList settings = {}; ///< more lines of sway's own configuration
    };

    /// Returns once the compositor takes connections; it is $WAYLAND_DISPLAY of this process, in a private
    /// $XDG_RUNTIME_DIR, until the object ends. Null, with the reason on standard error, when it does not come up.
    [[nodiscard]] static std::unique_ptr<SwaySession> start(const Options &options);
    [[nodiscard]] static std::unique_ptr<SwaySession> start() { return start(Options()); }
    ~SwaySession();
    SwaySession(const SwaySession &) = delete;
    SwaySession &operator=(const SwaySession &) = delete;

    /// What the monitor shows where nothing else is.
    static constexpr QRgb background = 0xff204060;

    /// A private folder, which goes with the session.
    [[nodiscard]] QString filePath(const QString &name) const { return m_folder.filePath(name); }
    /// Has the compositor do \a command, as "output HEADLESS-1 transform 90"; whether it did.
    bool command(const QString &command) const; // NOLINT(modernize-use-nodiscard)
    /// What \a monitor shows, in device pixels, with the pointer where one is shown.
    [[nodiscard]] QImage screen(const QString &monitor = QStringLiteral("HEADLESS-1")) const;
    /// Plugs in a second monitor, HEADLESS-2; whether it is there then.
    [[nodiscard]] bool addMonitor(QSize pixels, QPoint place) const;
    /// A frozen compositor answers nothing, as one that hangs.
    void setFrozen(bool isFrozen);
    /// Ends the compositor at once, as a crash would.
    void kill();

private:
    SwaySession();
    void makeFolders();
    void writeConfiguration(const Options &options) const;
    [[nodiscard]] bool startCompositor();
    [[nodiscard]] bool readNames();

    QTemporaryDir m_folder;
    ScopedEnvironment m_environment;
    std::unique_ptr<ChildProcess> m_compositor;
};

} // namespace vornic::test
