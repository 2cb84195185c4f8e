#include "desktop/portal_global_key.h"

#include "bus/dbus_call.h"
#include "bus/portal_request.h"
#include "desktop/portal_key_names.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusServiceWatcher>
#include <QList>

#include <utility>

namespace vornic {

namespace {

const QString keysInterface = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");
/// By these the desktop knows the key again at the next start.
const QString sessionToken = QStringLiteral("vornic");
const QString shortcutId = QStringLiteral("record");

/// As D-Bus has it: (sa{sv}).
struct Shortcut {
    QString id;
    QVariantMap properties;
};

QDBusArgument &operator<<(QDBusArgument &argument, const Shortcut &shortcut)
{
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Shortcut &shortcut)
{
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}

/// What is told of our key; nothing where it is not among \a shortcuts.
std::optional<QVariantMap> ours(const QVariant &shortcuts)
{
    const auto list = shortcuts.value<QDBusArgument>();
    if (list.currentSignature() != QLatin1StringView("a(sa{sv})"))
        return std::nullopt;
    for (const Shortcut &shortcut : qdbus_cast<QList<Shortcut>>(list)) {
        if (shortcut.id == shortcutId)
            return shortcut.properties;
    }
    return std::nullopt;
}

} // namespace

PortalGlobalKey::PortalGlobalKey() = default;

PortalGlobalKey::~PortalGlobalKey()
{
    m_request.reset();
    if (!m_session.isEmpty())
        sessionBus().send(portalSessionClosing(m_session));
}

GlobalKey::Answer PortalGlobalKey::listenFor(const QString &portableText)
{
    ++m_attempt;
    m_request.reset();
    m_given.clear();
    m_isHeld = false;
    m_wish = portableText;
    const QString before = std::exchange(m_session, {});
    const bool isKey = !portalKeyName(m_wish).isEmpty();
    // A session can be given keys once only, and the next one bears the same name.
    if (!before.isEmpty())
        callLater(sessionBus(),
                  portalSessionClosing(before),
                  this,
                  [this, isKey, attempt = m_attempt](const QDBusMessage & /*reply*/) {
                      if (isKey && attempt == m_attempt)
                          begin();
                  });
    else if (isKey)
        begin();
    if (m_wish.isEmpty())
        return Answer::Heard;
    return isKey ? Answer::Asked : Answer::NoSuchKey;
}

/// The portal is asked first whether it has such keys, also because what comes next waits for the bus.
void PortalGlobalKey::begin()
{
    callLater(sessionBus(),
              portalPropertiesCall(keysInterface),
              this,
              [this, attempt = m_attempt](const QDBusMessage &reply) {
                  if (attempt != m_attempt)
                      return;
                  if (portalPropertiesIn(reply).value(QStringLiteral("version")).toUInt() == 0) {
                      emit answered(Answer::NotOnThisDesktop);
                      return;
                  }
                  listenToPortal();
                  createSession();
              });
}

void PortalGlobalKey::listenToPortal()
{
    if (std::exchange(m_isListening, true))
        return;
    qDBusRegisterMetaType<Shortcut>();
    qDBusRegisterMetaType<QList<Shortcut>>();
    // As for requests: with the signature, and without the service.
    const auto connectTo = [this](const char *signal, const char *signature, const char *slot) {
        sessionBus().connect({},
                             QLatin1StringView(portal_names::path),
                             keysInterface,
                             QLatin1StringView(signal),
                             QLatin1StringView(signature),
                             this,
                             slot);
    };
    connectTo("Activated", "osta{sv}", SLOT(activated(QDBusMessage)));
    connectTo("Deactivated", "osta{sv}", SLOT(deactivated(QDBusMessage)));
    connectTo("ShortcutsChanged", "oa(sa{sv})", SLOT(changed(QDBusMessage)));
    auto *watcher = new QDBusServiceWatcher(QLatin1StringView(portal_names::service),
                                            sessionBus(),
                                            QDBusServiceWatcher::WatchForOwnerChange,
                                            this);
    connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this, &PortalGlobalKey::portalEnded);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this, [this] {
        if (std::exchange(m_wasEnded, false))
            begin();
    });
}

void PortalGlobalKey::request(const QString &method,
                              const QVariantList &arguments,
                              QVariantMap options,
                              Step next)
{
    options[QStringLiteral("handle_token")] = portalToken();
    m_request = std::make_unique<PortalRequest>(
        keysInterface, method, arguments, options, [this, next](uint response, const QVariantMap &results) {
            if (response == PortalRequest::Given)
                (this->*next)(results);
            else
                emit answered(response == PortalRequest::Declined ? Answer::Declined
                                                                  : Answer::NotOnThisDesktop);
        });
}

void PortalGlobalKey::createSession()
{
    m_session = portalPath(QStringLiteral("session"), sessionToken);
    sessionBus().connect({},
                         m_session,
                         QLatin1StringView(portal_names::session),
                         QStringLiteral("Closed"),
                         this,
                         SLOT(sessionClosed()));
    request(QStringLiteral("CreateSession"),
            {},
            { { QStringLiteral("session_handle_token"), sessionToken } },
            &PortalGlobalKey::bind);
}

void PortalGlobalKey::bind(const QVariantMap & /*results*/)
{
    const Shortcut shortcut {
        shortcutId,
        { { QStringLiteral("description"),
            QCoreApplication::translate("vornic", "Start or stop a recording") },
          { QStringLiteral("preferred_trigger"), portalKeyName(m_wish) } },
    };
    const QString noParentWindow;
    request(QStringLiteral("BindShortcuts"),
            { QVariant::fromValue(QDBusObjectPath(m_session)),
              QVariant::fromValue(QList<Shortcut> { shortcut }),
              noParentWindow },
            {},
            &PortalGlobalKey::learnBound);
}

void PortalGlobalKey::learnBound(const QVariantMap &results)
{
    learnKey(results.value(QStringLiteral("shortcuts")));
}

/// A desktop that tells no name of the key has it as it was asked for.
void PortalGlobalKey::learnKey(const QVariant &shortcuts)
{
    const auto properties = ours(shortcuts);
    const QVariant name
        = properties ? properties->value(QStringLiteral("trigger_description")) : QVariant(QString());
    m_given = name.toString();
    emit answered(name.isValid() && m_given.isEmpty() ? Answer::NotSet : Answer::Heard);
}

void PortalGlobalKey::portalEnded()
{
    m_request.reset();
    m_isHeld = false;
    m_wasEnded = m_wasEnded || !m_session.isEmpty();
    m_session.clear();
}

bool PortalGlobalKey::isOurs(const QDBusMessage &signal) const
{
    return !m_session.isEmpty() && signal.arguments().value(0).value<QDBusObjectPath>().path() == m_session
        && signal.arguments().value(1).toString() == shortcutId;
}

void PortalGlobalKey::activated(const QDBusMessage &signal)
{
    if (isOurs(signal) && !std::exchange(m_isHeld, true))
        emit pressed();
}

void PortalGlobalKey::deactivated(const QDBusMessage &signal)
{
    if (isOurs(signal))
        m_isHeld = false;
}

void PortalGlobalKey::changed(const QDBusMessage &signal)
{
    if (signal.arguments().value(0).value<QDBusObjectPath>().path() == m_session)
        learnKey(signal.arguments().value(1));
}

/// By the desktop, whose user wants that.
void PortalGlobalKey::sessionClosed()
{
    m_session.clear();
    m_given.clear();
    emit answered(Answer::NotSet);
}

} // namespace vornic
