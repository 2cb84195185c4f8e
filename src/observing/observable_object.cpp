#include "observing/observable_object.h"

#include "base/log.h"
#include "observing/key_path_observer.h"

#include <QMetaMethod>
#include <QMetaProperty>

namespace vornic {

ObservableObject::ObservableObject(QObject *parent)
    : QObject(parent)
{
}

void ObservableObject::declareDependency(const QByteArray &key, const QByteArrayList &keyPaths)
{
    for (const QByteArray &keyPath : keyPaths)
        m_dependents[keyPath].append(key);
}

void ObservableObject::notifyChanged(const QByteArrayList &keys)
{
    const QByteArrayList changed = withDependents(keys);
    for (const QByteArray &key : changed)
        emitNotifySignal(key);
}

QByteArrayList ObservableObject::withDependents(const QByteArrayList &keys) const
{
    QByteArrayList affected = keys;
    for (qsizetype i = 0; i < affected.size(); ++i) {
        for (const QByteArray &dependent : m_dependents.value(affected.at(i))) {
            if (!affected.contains(dependent))
                affected.append(dependent);
        }
    }
    return affected;
}

void ObservableObject::emitNotifySignal(const QByteArray &key)
{
    const QMetaProperty property = metaObject()->property(metaObject()->indexOfProperty(key));
    if (!property.hasNotifySignal() || !property.notifySignal().invoke(this, Qt::DirectConnection)) {
        logMessage(QStringLiteral("%1 has no observable property \"%2\".")
                       .arg(QLatin1StringView(metaObject()->className()), QLatin1StringView(key)));
    }
}

void ObservableObject::connectNotify(const QMetaMethod &signal)
{
    // Not for destroyed() and objectNameChanged(), which say nothing about the declared properties.
    if (!m_observesKeyPaths && signal.methodIndex() >= ObservableObject::staticMetaObject.methodCount())
        observeKeyPaths();
}

void ObservableObject::observeKeyPaths()
{
    m_observesKeyPaths = true;
    for (auto entry = m_dependents.cbegin(); entry != m_dependents.cend(); ++entry) {
        if (!entry.key().contains('.'))
            continue;
        auto *observer = new KeyPathObserver(this, entry.key(), this);
        connect(observer, &KeyPathObserver::valueChanged, this, [this, dependents = entry.value()] {
            notifyChanged(dependents);
        });
    }
}

} // namespace vornic
