#pragma once

#include "support/child_process.h"

#include <QSize>
#include <QString>
#include <QStringList>

#include <memory>

namespace vornic::test {

/// An X server without hardware, of the test's own: no other program knows its display.
///
/// Made and destroyed on the test's main thread. Any number of them may run at once.
class XvfbServer
{
public:
    struct Options {
        QSize size { 1280, 720 };
        int depth = 24;
        QStringList arguments = {}; ///< for example { "-extension", "DAMAGE" }
    };

    /// Returns once the server takes connections; it is $DISPLAY of this process until the object ends.
    /// Null, with the reason on standard error, when it does not come up.
    [[nodiscard]] static std::unique_ptr<XvfbServer> start(const Options &options);
    [[nodiscard]] static std::unique_ptr<XvfbServer> start() { return start(Options()); }
    ~XvfbServer();
    XvfbServer(const XvfbServer &) = delete;
    XvfbServer &operator=(const XvfbServer &) = delete;

    /// As in $DISPLAY.
    [[nodiscard]] const QString &displayName() const { return m_displayName; }
    /// Ends the server at once, as a crash would.
    void kill();
    /// Stops it, so that it is there and answers nothing, or lets it go on.
    void setFrozen(bool isFrozen);

    /// Runs a program on this display to its end; its exit status.
    int run(const QStringList &command) const;
    /// Starts a program on this display.
    [[nodiscard]] std::unique_ptr<ChildProcess> startProgram(const QStringList &command) const;
    /// The window manager openbox, once it manages; null when it does not come up.
    [[nodiscard]] std::unique_ptr<ChildProcess> startOpenbox() const;
    /// The compositing manager picom, once it composites; null when it does not come up.
    [[nodiscard]] std::unique_ptr<ChildProcess> startPicom(const QString &backend
                                                           = QStringLiteral("xrender")) const;
    /// A terminal at a place of its own, in which \a shellCommand runs; null when no window appears.
    [[nodiscard]] std::unique_ptr<ChildProcess> startXterm(const QString &shellCommand) const;
    /// xdotool with \a arguments, to its end; its exit status.
    int xdotool(const QStringList &arguments) const;

private:
    XvfbServer(std::unique_ptr<ChildProcess> process, QString displayName);

    std::unique_ptr<ChildProcess> m_process;
    QString m_displayName;
    QByteArray m_displayBefore;
};

} // namespace vornic::test
