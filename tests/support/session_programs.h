#pragma once

#include "support/child_process.h"
#include "support/private_bus.h"
#include "support/scoped_environment.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <memory>
#include <vector>

namespace vornic::test {

/// A desktop session of the test's own without its compositor: private folders, and in them a session bus, PipeWire,
/// WirePlumber and the desktop's portal, each once it is started. They are the environment of this process until the object
/// ends; the programs end then, the last one first.
///
/// Made by what starts a compositor, on the test's main thread. Each start returns once the program answers; false, with
/// the reason on standard error, where it does not come up.
class SessionPrograms
{
public:
    /// \a desktop as in $XDG_CURRENT_DESKTOP.
    explicit SessionPrograms(QString desktop);
    ~SessionPrograms();
    SessionPrograms(const SessionPrograms &) = delete;
    SessionPrograms &operator=(const SessionPrograms &) = delete;

    /// A private folder, which goes with the session; "run" in it is $XDG_RUNTIME_DIR.
    [[nodiscard]] QString filePath(const QString &name) const { return m_folder.filePath(name); }
    [[nodiscard]] ScopedEnvironment &environment() { return m_environment; }

    /// With the permission store, which it starts when somebody asks for it.
    [[nodiscard]] bool startBus();
    [[nodiscard]] bool startPipeWire();
    /// The portal, and \a backend, by its name, as the desktop's part of it for screen casts.
    [[nodiscard]] bool startPortal(const QString &backend, const QStringList &environment = {});
    /// What it prints is in the file \a name with ".log" behind it.
    [[nodiscard]] bool start(const QString &name,
                             const QStringList &command,
                             const std::function<bool()> &isUp,
                             const QStringList &environment = {});

    /// Whether somebody owns \a service on the session bus.
    [[nodiscard]] static bool isOnBus(const QString &service);
    /// What the program with that name has printed so far.
    [[nodiscard]] QString printedBy(const QString &name) const;
    /// Has the portal take \a token for the consent of a user who was asked before, with what he chose in the words of the
    /// desktop's own part.
    [[nodiscard]] static bool grant(const QString &token, const QString &choice);

private:
    QString m_desktop;
    QTemporaryDir m_folder;
    ScopedEnvironment m_environment;
    std::unique_ptr<PrivateBus> m_bus;
    std::vector<std::unique_ptr<ChildProcess>> m_programs;
};

} // namespace vornic::test
