#include "base/user_defaults.h"

#include <QSettings>

namespace vornic::user_defaults {

namespace {

QSettings store()
{
    return {
        QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("kavlor"), QStringLiteral("Vornic")
    };
}

} // namespace

QVariant value(const QString &key)
{
    return store().value(key);
}

void setValue(const QString &key, const QVariant &value)
{
    store().setValue(key, value);
}

void remove(const QString &key)
{
    store().remove(key);
}

bool synchronize()
{
    QSettings settings = store();
    settings.sync();
    return settings.status() == QSettings::NoError;
}

} // namespace vornic::user_defaults
