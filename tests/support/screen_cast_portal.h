#pragma once

#include "support/child_process.h"
#include "support/private_bus.h"
#include "support/scoped_environment.h"

#include <map>
#include <memory>

namespace vornic::test {

class SwaySession;

/// The programs of a Wayland session that hand out pictures of its monitor: a session bus, PipeWire, WirePlumber and
/// the desktop portal with its part for wlroots, which grants or refuses the monitor without asking anybody. The pointer is
/// in the pictures.
///
/// Made and destroyed on the test's main thread, inside a SwaySession.
class ScreenCastPortal
{
public:
    enum class Part {
        PipeWire,
        WirePlumber,
        Backend, ///< what talks to the compositor
        Portal,  ///< what programs talk to
    };

    /// What becomes of everybody who asks for the monitor.
    enum class Consent { Granted, Refused };

    /// Returns once the portal answers on the bus, which is $DBUS_SESSION_BUS_ADDRESS of this process until the object
    /// ends. Null, with the reason on standard error, when some part does not come up. \a monitor is what is granted.
    [[nodiscard]] static std::unique_ptr<ScreenCastPortal> start(const SwaySession &session,
                                                                 Consent consent = Consent::Granted,
                                                                 const QString &monitor
                                                                 = QStringLiteral("HEADLESS-1"));
    ~ScreenCastPortal();
    ScreenCastPortal(const ScreenCastPortal &) = delete;
    ScreenCastPortal &operator=(const ScreenCastPortal &) = delete;

    /// Ends \a part at once, as a crash would.
    void kill(Part part);
    /// Suspends \a part, as a busy machine would, or lets it go on.
    void setFrozen(Part part, bool isFrozen);

private:
    explicit ScreenCastPortal(const SwaySession &session);
    [[nodiscard]] bool startBus();
    [[nodiscard]] bool startPipeWire();
    [[nodiscard]] bool startPortal(Consent consent, const QString &monitor);
    [[nodiscard]] bool startPart(Part part,
                                 const QStringList &command,
                                 const std::function<bool()> &isUp,
                                 const QStringList &environment = {});

    const SwaySession &m_session;
    ScopedEnvironment m_environment;
    std::unique_ptr<PrivateBus> m_bus;
    std::map<Part, std::unique_ptr<ChildProcess>> m_parts;
};

} // namespace vornic::test
