#pragma once

#include <QDBusMessage>
#include <QObject>
#include <QVariantList>
#include <QVariantMap>

#include <functional>

namespace vornic {

/// How the desktop's portals are named on the session bus.
namespace portal_names {
inline constexpr auto service = "org.freedesktop.portal.Desktop";
inline constexpr auto path = "/org/freedesktop/portal/desktop";
inline constexpr auto screenCast = "org.freedesktop.portal.ScreenCast";
inline constexpr auto request = "org.freedesktop.portal.Request";
inline constexpr auto session = "org.freedesktop.portal.Session";
} // namespace portal_names

/// A call of a method of the portal with that interface.
[[nodiscard]] QDBusMessage
portalCall(const QString &interface, const QString &method, const QVariantList &arguments);
/// Asks for all that a portal says of itself, and what was answered; nothing where there is none.
[[nodiscard]] QDBusMessage portalPropertiesCall(const QString &interface);
[[nodiscard]] QVariantMap portalPropertiesIn(const QDBusMessage &answer);
/// Ends the session at \a path.
[[nodiscard]] QDBusMessage portalSessionClosing(const QString &path);
/// A word that nobody else knows, for names of things on the bus.
[[nodiscard]] QString portalToken();
/// How the portal names things of this program that were given the name \a token: \a kind is "request" or "session".
[[nodiscard]] QString portalPath(const QString &kind, const QString &token);

/// One request to a portal, which may ask the user before it answers, with a signal.
///
/// Made for each step of what is asked for; lives on the main thread. Its end takes back what was not answered, and the dialog
/// with it.
class PortalRequest : public QObject
{
    Q_OBJECT
public:
    /// As the portal numbers them.
    enum Response : uint { Given = 0, Declined = 1, Failed = 2 };
    /// \a results: where the call itself has failed, "error" with the bus's words.
    using Answer = std::function<void(uint response, const QVariantMap &results)>;

    /// \a options come behind the \a arguments.
    PortalRequest(const QString &interface,
                  const QString &method,
                  QVariantList arguments,
                  QVariantMap options,
                  Answer answer);
    ~PortalRequest() override;

private slots:
    void responded(uint response, const QVariantMap &results);

private:
    void listen();

    const Answer m_answer;
    const QString m_path;
    bool m_isAnswered = false;
};

} // namespace vornic
