#include "observing/key_path_observer.h"

#include "base/log.h"

#include <algorithm>
#include <utility>

namespace vornic {

KeyPathObserver::KeyPathObserver(QObject *root, const QByteArray &keyPath, QObject *parent)
    : QObject(parent)
    , m_root(root)
    , m_keys(keyPath.split('.'))
{
    follow();
}

QVariant KeyPathObserver::value() const
{
    if (!isComplete())
        return {};
    const Hop last = m_hops.back();
    return last.property.read(last.object);
}

bool KeyPathObserver::setValue(const QVariant &value)
{
    if (!isComplete())
        return false;
    const Hop last = m_hops.back(); // a copy: what is set may change the path, or end this observer
    return last.property.write(last.object, value);
}

bool KeyPathObserver::isComplete() const
{
    return m_hops.size() == static_cast<std::size_t>(m_keys.size());
}

std::vector<KeyPathObserver::Hop> KeyPathObserver::resolvedHops() const
{
    std::vector<Hop> hops;
    QObject *object = m_root;
    for (const QByteArray &key : m_keys) {
        if (!hops.empty())
            object = qvariant_cast<QObject *>(hops.back().property.read(hops.back().object));
        if (!object)
            break;
        const QMetaObject *meta = object->metaObject();
        const QMetaProperty property = meta->property(meta->indexOfProperty(key));
        if (!property.isValid()) {
            logMessage(QStringLiteral("%1 has no property \"%2\".")
                           .arg(QLatin1StringView(meta->className()), QLatin1StringView(key)));
            break;
        }
        hops.push_back({ object, property });
    }
    return hops;
}

void KeyPathObserver::follow()
{
    std::vector<Hop> hops = resolvedHops();
    if (std::ranges::equal(hops, m_hops, {}, &Hop::object, &Hop::object))
        return;
    for (const Hop &hop : m_hops)
        disconnect(hop.object, nullptr, this, nullptr);
    m_hops = std::move(hops);
    for (const Hop &hop : m_hops)
        subscribe(hop);
}

void KeyPathObserver::subscribe(const Hop &hop)
{
    // Unique, because one object may stand at several places of the path.
    connect(hop.object, &QObject::destroyed, this, &KeyPathObserver::forgetDestroyed, Qt::UniqueConnection);
    if (!hop.property.hasNotifySignal())
        return;
    const int slot = staticMetaObject.indexOfSlot("followFromSender()");
    connect(hop.object,
            hop.property.notifySignal(),
            this,
            staticMetaObject.method(slot),
            static_cast<Qt::ConnectionType>(Qt::DirectConnection | Qt::UniqueConnection));
}

void KeyPathObserver::followFromSender()
{
    const QObject *origin = sender();
    follow();
    emit valueChanged(origin);
}

void KeyPathObserver::forgetDestroyed(const QObject *object)
{
    const bool hadValue = isComplete();
    const auto dead = std::ranges::find(m_hops, object, &Hop::object);
    for (auto hop = dead; hop != m_hops.end(); ++hop) {
        if (hop->object != object)
            disconnect(hop->object, nullptr, this, nullptr);
    }
    m_hops.erase(dead, m_hops.end());
    if (hadValue && !isComplete())
        emit valueChanged(nullptr);
}

} // namespace vornic
