#pragma once

#include <QByteArray>
#include <QMap>
#include <QObject>

#include <memory>
#include <vector>

namespace vornic {

class KeyPathObserver;

/// An object whose properties say which other properties and key paths they depend on.
///
/// Base of the classes that controls are bound to. Observers connect to the NOTIFY signals, which take no
/// arguments. Setters, notifications and connections on the main thread only.
class ObservableObject : public QObject
{
    Q_OBJECT
public:
    ~ObservableObject() override;

protected:
    explicit ObservableObject(QObject *parent = nullptr);

    /// Declares, in the constructor of the class that has the property \a key, that it changes with each of
    /// \a keyPaths: names of properties of this object, or paths from it ("options.logoContext.LogoType").
    /// Chains and circles are fine. Paths are read for the first time when somebody connects to a NOTIFY
    /// signal.
    void declareDependency(const QByteArray &key, const QByteArrayList &keyPaths);

    /// Tells that \a keys now have other values: emits their NOTIFY signals and those of all that depends on
    /// them, each once, here and in the objects whose key paths lead here. Called by setters after storing.
    void notifyChanged(const QByteArrayList &keys);

    void connectNotify(const QMetaMethod &signal) override;

private:
    void observeKeyPaths();
    void keyPathChanged(const QByteArray &keyPath, const QObject *origin);
    void emitNotifySignal(const QByteArray &key);
    [[nodiscard]] QByteArrayList withDependents(const QByteArrayList &keys) const;
    void tellOnce(const QByteArrayList &keys);

    QMap<QByteArray, QByteArrayList> m_dependents; ///< key or key path -> keys that change with it
    std::vector<std::unique_ptr<KeyPathObserver>> m_observers; ///< empty until somebody listens
};

} // namespace vornic
