#include "observing/observable_object.h"

#include "base/log.h"
#include "observing/key_path_observer.h"

#include <QMetaMethod>
#include <QMetaProperty>
#include <QPointer>

#include <set>
#include <utility>

namespace vornic {

namespace {

/// One change on its way to its observers, through as many objects as depend on it. A slot that sets another
/// property meanwhile starts a change of its own, nested in this one.
struct Change {
    Change()
        : outer(std::exchange(innermost, this))
    {
    }
    ~Change() { innermost = outer; }
    Change(const Change &) = delete;
    Change &operator=(const Change &) = delete;

    std::set<std::pair<const QObject *, QByteArray>> told;
    const QObject *emitter = nullptr; ///< whose signal is being emitted
    Change *outer;

    static inline Change *innermost = nullptr;
};

bool isKeyPath(const QByteArray &key)
{
    return key.contains('.');
}

} // namespace

ObservableObject::ObservableObject(QObject *parent)
    : QObject(parent)
{
}

ObservableObject::~ObservableObject() = default;

void ObservableObject::declareDependency(const QByteArray &key, const QByteArrayList &keyPaths)
{
    for (const QByteArray &keyPath : keyPaths)
        m_dependents[keyPath].append(key);
}

void ObservableObject::notifyChanged(const QByteArrayList &keys)
{
    Change change;
    tellOnce(keys);
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

/// Emits the signals of \a keys and their dependents that the innermost change has not emitted yet.
void ObservableObject::tellOnce(const QByteArrayList &keys)
{
    Change &change = *Change::innermost;
    QByteArrayList fresh;
    for (const QByteArray &key : withDependents(keys)) {
        if (!isKeyPath(key) && change.told.emplace(this, key).second)
            fresh.append(key);
    }
    const QObject *outerEmitter = std::exchange(change.emitter, this);
    const QPointer<QObject> self(this);
    for (const QByteArray &key : std::as_const(fresh)) {
        emitNotifySignal(key);
        if (!self)
            break;
    }
    change.emitter = outerEmitter;
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
    if (m_observers.empty() && signal.methodIndex() >= ObservableObject::staticMetaObject.methodCount())
        observeKeyPaths();
}

void ObservableObject::observeKeyPaths()
{
    QByteArrayList keyPaths = m_dependents.keys();
    keyPaths.removeIf([](const QByteArray &key) { return !isKeyPath(key); });
    // Slots first: following a path connects to this object's own signals, which leads back here.
    m_observers.resize(static_cast<std::size_t>(keyPaths.size()));
    for (std::size_t i = 0; i < m_observers.size(); ++i) {
        const QByteArray keyPath = keyPaths.at(static_cast<qsizetype>(i));
        m_observers[i] = std::make_unique<KeyPathObserver>(this, keyPath);
        connect(m_observers[i].get(),
                &KeyPathObserver::valueChanged,
                this,
                [this, keyPath](const QObject *origin) { keyPathChanged(keyPath, origin); });
    }
}

void ObservableObject::keyPathChanged(const QByteArray &keyPath, const QObject *origin)
{
    if (!origin) {
        // An object died, perhaps as part of this one's own destruction, when no getter may run any more.
        QMetaObject::invokeMethod(
            this, [this, keyPath] { notifyChanged({ keyPath }); }, Qt::QueuedConnection);
    } else if (Change::innermost && Change::innermost->emitter == origin) {
        tellOnce({ keyPath });
    } else {
        notifyChanged({ keyPath });
    }
}

} // namespace vornic
