#include "observing/key_path_observer.h"

#include "base/log.h"

#include <QMetaMethod>

namespace vornic {

namespace {

QMetaProperty propertyNamed(const QObject *object, const QByteArray &name)
{
    if (!object)
        return {};
    const QMetaObject *meta = object->metaObject();
    const QMetaProperty property = meta->property(meta->indexOfProperty(name));
    if (!property.isValid()) {
        logMessage(QStringLiteral("%1 has no property \"%2\".")
                       .arg(QLatin1StringView(meta->className()), QLatin1StringView(name)));
    }
    return property;
}

} // namespace

KeyPathObserver::KeyPathObserver(QObject *root, const QByteArray &keyPath, QObject *parent)
    : QObject(parent)
    , m_object(root)
{
    QByteArrayList keys = keyPath.split('.');
    const QByteArray last = keys.takeLast();
    for (const QByteArray &key : keys)
        m_object = propertyNamed(m_object, key).read(m_object).value<QObject *>();
    m_property = propertyNamed(m_object, last);
    if (m_property.hasNotifySignal())
        connect(m_object,
                m_property.notifySignal(),
                this,
                QMetaMethod::fromSignal(&KeyPathObserver::valueChanged));
}

QVariant KeyPathObserver::value() const
{
    return m_property.read(m_object);
}

bool KeyPathObserver::setValue(const QVariant &value)
{
    const QMetaProperty property
        = m_property; // a copy: whoever is told of the new value may delete this observer
    return property.write(m_object, value);
}

} // namespace vornic
