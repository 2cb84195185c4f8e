#include "desktop/application_adaptor.h"

#include "bus/dbus_call.h"

#include <QMetaObject>

namespace vornic {

namespace {

QString activationToken(const QVariantMap &platformData)
{
    const QString token = platformData.value(QStringLiteral("activation-token")).toString();
    return token.isEmpty() ? platformData.value(QStringLiteral("desktop-startup-id")).toString() : token;
}

} // namespace

ApplicationAdaptor::ApplicationAdaptor(SingleInstance *instance)
    : QDBusAbstractAdaptor(instance)
    , m_instance(instance)
{
}

void ApplicationAdaptor::Activate(const QVariantMap &platform_data)
{
    const auto activate = [instance = m_instance, token = activationToken(platform_data)] {
        emit instance->activated(token);
    };
    QMetaObject::invokeMethod(m_instance, activate, Qt::QueuedConnection);
}

void ApplicationAdaptor::Open(const QStringList &uris, const QVariantMap &platform_data)
{
    Q_UNUSED(uris);
    Activate(platform_data);
}

void ApplicationAdaptor::ActivateAction(const QString &action_name,
                                        const QVariantList &parameter,
                                        const QVariantMap &platform_data,
                                        const QDBusMessage &message)
{
    if (!m_instance->mayAct(action_name)) {
        message.setDelayedReply(true);
        sessionBus().send(message.createErrorReply(refusedError, QStringLiteral("Not now")));
        return;
    }
    const auto ask
        = [instance = m_instance,
           action_name,
           file = parameter.value(0).toString(),
           token = activationToken(platform_data)] { emit instance->actionAsked(action_name, file, token); };
    QMetaObject::invokeMethod(m_instance, ask, Qt::QueuedConnection);
}

} // namespace vornic
