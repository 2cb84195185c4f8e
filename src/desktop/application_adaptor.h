#pragma once

#include "desktop/single_instance.h"

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QLatin1StringView>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

namespace vornic {

/// What other programs can call on the bus; they are answered before anything is done.
///
/// Made by SingleInstance, lives on the main thread.
class ApplicationAdaptor final : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    /// The error that answers an action which cannot be done now.
    static constexpr auto refusedError = QLatin1StringView("com.kavlor.vornic.Error.Refused");

    explicit ApplicationAdaptor(SingleInstance *instance);

public slots:
    void Activate(const QVariantMap &platform_data);
    /// There is nothing to open: it counts as a plain start.
    void Open(const QStringList &uris, const QVariantMap &platform_data);
    /// \a parameter: at most the path of a file. \a message: the call itself, for an error as its answer.
    void ActivateAction(const QString &action_name,
                        const QVariantList &parameter,
                        const QVariantMap &platform_data,
                        const QDBusMessage &message);

private:
    SingleInstance *m_instance;
};

} // namespace vornic
