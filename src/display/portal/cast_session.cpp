#include "display/portal/cast_session.h"

#include "base/user_defaults.h"
#include "bus/dbus_call.h"
#include "display/portal/portal_abilities.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusServiceWatcher>

#include <optional>
#include <utility>

namespace vornic {

namespace {

/// By which the portal knows again what the user has chosen; each is good for one session.
const QString tokenKey = QStringLiteral("com.kavlor.screenCastToken");

constexpr uint monitors = 1;
constexpr uint cursorEmbedded = 2;
constexpr uint cursorAsMetadata = 4;
constexpr uint untilRevoked = 2;

std::optional<QPoint> positionIn(const QVariantMap &properties)
{
    const auto position = properties.value(QStringLiteral("position")).value<QDBusArgument>();
    return position.currentSignature() == QLatin1StringView("(ii)")
        ? std::optional(qdbus_cast<QPoint>(position))
        : std::nullopt;
}

/// The first stream in what Start has answered; nothing where there is none.
std::optional<CastSource> firstStream(const QVariantMap &results)
{
    const auto streams = results.value(QStringLiteral("streams")).value<QDBusArgument>();
    if (streams.currentSignature() != QLatin1StringView("a(ua{sv})"))
        return std::nullopt;
    std::optional<CastSource> stream;
    streams.beginArray();
    if (!streams.atEnd()) {
        uint number = 0;
        QVariantMap properties;
        streams.beginStructure();
        streams >> number >> properties;
        streams.endStructure();
        stream = CastSource { {}, number, positionIn(properties) };
    }
    streams.endArray(); // without it the toolkit keeps a copy for ever
    return stream;
}

void rememberToken(const QVariant &token)
{
    if (token.toString().isEmpty())
        user_defaults::remove(tokenKey);
    else
        user_defaults::setValue(tokenKey, token.toString());
    user_defaults::synchronize();
}

} // namespace

CastSession::CastSession(QString parentWindow, Answer answer)
    : m_parentWindow(std::move(parentWindow))
    , m_answer(std::move(answer))
{
    callLater(sessionBus(), portalAbilitiesCall(), this, [this](const QDBusMessage &reply) {
        learnAbilities(reply);
    });
}

CastSession::~CastSession()
{
    m_request.reset();
    if (!m_path.isEmpty())
        sessionBus().send(portalSessionClosing(m_path));
}

/// Asked first, also because the bus must be alive for what comes next, some of which is waited for.
void CastSession::learnAbilities(const QDBusMessage &answer)
{
    const PortalAbilities abilities = portalAbilitiesIn(answer);
    if (abilities.version == 0) {
        finish({ DisplayAccess::State::Failed, noPortalText() });
        return;
    }
    m_version = abilities.version;
    m_cursorModes = abilities.cursorModes;
    watchService();
    createSession();
}

/// One that dies while its dialog stands never answers. Once there is a stream, it goes on without the portal.
void CastSession::watchService()
{
    auto *watcher = new QDBusServiceWatcher(QLatin1StringView(portal_names::service),
                                            sessionBus(),
                                            QDBusServiceWatcher::WatchForUnregistration,
                                            this);
    connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this, [this] {
        fail(QCoreApplication::translate("vornic", "it has ended"));
    });
}

void CastSession::request(const QString &method,
                          const QVariantList &arguments,
                          QVariantMap options,
                          Step next)
{
    options[QStringLiteral("handle_token")] = portalToken();
    m_request
        = std::make_unique<PortalRequest>(QLatin1StringView(portal_names::screenCast),
                                          method,
                                          arguments,
                                          options,
                                          [this, next](uint response, const QVariantMap &results) {
                                              if (response == PortalRequest::Given)
                                                  (this->*next)(results);
                                              else if (response == PortalRequest::Declined)
                                                  finish({ DisplayAccess::State::Declined, {} });
                                              else
                                                  fail(results.value(QStringLiteral("error")).toString());
                                          });
}

void CastSession::createSession()
{
    const QString token = portalToken();
    m_path = portalPath(QStringLiteral("session"), token);
    sessionBus().connect({},
                         m_path,
                         QLatin1StringView(portal_names::session),
                         QStringLiteral("Closed"),
                         this,
                         SIGNAL(ended()));
    request(QStringLiteral("CreateSession"),
            {},
            { { QStringLiteral("session_handle_token"), token } },
            &CastSession::selectSources);
}

void CastSession::selectSources(const QVariantMap & /*results*/)
{
    constexpr uint firstWithPersistence = 4;
    QVariantMap options { { QStringLiteral("types"), monitors }, { QStringLiteral("multiple"), false } };
    if ((m_cursorModes & cursorAsMetadata) != 0)
        options[QStringLiteral("cursor_mode")] = cursorAsMetadata;
    else if ((m_cursorModes & cursorEmbedded) != 0)
        options[QStringLiteral("cursor_mode")] = cursorEmbedded;
    if (m_version >= firstWithPersistence) {
        options[QStringLiteral("persist_mode")] = untilRevoked;
        if (const QString token = user_defaults::value(tokenKey).toString(); !token.isEmpty())
            options[QStringLiteral("restore_token")] = token;
    }
    request(QStringLiteral("SelectSources"),
            { QVariant::fromValue(QDBusObjectPath(m_path)) },
            options,
            &CastSession::start);
}

void CastSession::start(const QVariantMap & /*results*/)
{
    request(QStringLiteral("Start"),
            { QVariant::fromValue(QDBusObjectPath(m_path)), m_parentWindow },
            {},
            &CastSession::openRemote);
}

void CastSession::openRemote(const QVariantMap &results)
{
    rememberToken(results.value(QStringLiteral("restore_token")));
    const std::optional<CastSource> stream = firstStream(results);
    if (!stream) {
        fail({});
        return;
    }
    const QDBusMessage call = portalCall(QLatin1StringView(portal_names::screenCast),
                                         QStringLiteral("OpenPipeWireRemote"),
                                         { QVariant::fromValue(QDBusObjectPath(m_path)), QVariantMap() });
    callLater(sessionBus(), call, this, [this, stream](const QDBusMessage &reply) {
        CastSource source = *stream;
        source.remote = reply.arguments().value(0).value<QDBusUnixFileDescriptor>();
        if (isReply(reply) && source.remote.isValid())
            finish({}, source);
        else
            fail(reply.errorMessage());
    });
}

void CastSession::finish(const DisplayAccess &access, const CastSource &source)
{
    if (const Answer answer = std::exchange(m_answer, nullptr))
        answer(access, source);
}

void CastSession::fail(const QString &reason)
{
    const QString text = reason.isEmpty()
        ? QCoreApplication::translate("vornic", "The desktop's portal gives no pictures of its screen.")
        : QCoreApplication::translate("vornic", "The desktop's portal gives no pictures of its screen: %1.")
              .arg(reason.endsWith(u'.') ? reason.chopped(1) : reason);
    finish({ DisplayAccess::State::Failed, text });
}

} // namespace vornic
