#include "desktop/single_instance.h"

#include "bus/dbus_call.h"
#include "desktop/application_adaptor.h"
#include "desktop/application_id.h"

#include <QVariantList>
#include <QVariantMap>

namespace vornic {

namespace {

const QString objectPath = QStringLiteral("/com/kavlor/vornic");
const QString interfaceName = QStringLiteral("org.freedesktop.Application");
constexpr int handOverTimeoutMs = 2000;

/// What the desktop gave this process to bring a window to the front with.
QVariantMap ownPlatformData()
{
    QVariantMap data;
    const auto add = [&](const QString &key, const char *variable) {
        if (!qEnvironmentVariableIsEmpty(variable))
            data.insert(key, qEnvironmentVariable(variable));
    };
    add(QStringLiteral("desktop-startup-id"), "DESKTOP_STARTUP_ID");
    add(QStringLiteral("activation-token"), "XDG_ACTIVATION_TOKEN");
    return data;
}

/// What an action is done to, as the interface passes it: at most one value.
QVariantList parameter(const QString &file)
{
    return file.isEmpty() ? QVariantList() : QVariantList { file };
}

/// Whose answer nobody needs: the toolkit's own call would wait for it.
QDBusMessage releaseName()
{
    const QString service = QStringLiteral("org.freedesktop.DBus");
    QDBusMessage call = QDBusMessage::createMethodCall(
        service, QStringLiteral("/org/freedesktop/DBus"), service, QStringLiteral("ReleaseName"));
    call.setArguments({ applicationId() });
    return call;
}

} // namespace

SingleInstance::SingleInstance(QObject *parent)
    : QObject(parent)
{
    new ApplicationAdaptor(this);
    claim();
}

SingleInstance::~SingleInstance()
{
    QDBusConnection bus = sessionBus();
    if (!bus.isConnected())
        return;
    if (m_isOnly)
        bus.send(releaseName());
    bus.unregisterObject(objectPath);
}

void SingleInstance::claim()
{
    QDBusConnection bus = sessionBus();
    // The object first: whoever sees the name may call at once.
    m_isOnly = !bus.isConnected()
        || (bus.registerObject(objectPath, this, QDBusConnection::ExportAdaptors)
            && bus.registerService(applicationId()));
    if (!m_isOnly)
        bus.unregisterObject(objectPath);
}

SingleInstance::Answer SingleInstance::handOver(const QString &action, const QString &file)
{
    QDBusMessage call = QDBusMessage::createMethodCall(applicationId(),
                                                       objectPath,
                                                       interfaceName,
                                                       action.isEmpty() ? QStringLiteral("Activate")
                                                                        : QStringLiteral("ActivateAction"));
    if (action.isEmpty())
        call.setArguments({ ownPlatformData() });
    else
        call.setArguments({ action, parameter(file), ownPlatformData() });
    call.setAutoStartService(false);
    const QDBusMessage reply = sessionBus().call(call, QDBus::Block, handOverTimeoutMs);
    if (isReply(reply))
        return Answer::Taken;
    if (reply.errorName() == ApplicationAdaptor::refusedError)
        return Answer::Refused;
    claim();
    return Answer::None;
}

} // namespace vornic
