#pragma once

#include <QByteArray>
#include <QMap>
#include <QObject>

namespace vornic {

/// An object whose properties say which other properties and key paths they depend on.
///
/// Base of the classes that controls are bound to. Observers connect to the NOTIFY signals, which take no
/// arguments. Setters, notifications and connections on the main thread only.
class ObservableObject : public QObject
{
    Q_OBJECT
public:
    ~ObservableObject() override = default;

protected:
    explicit ObservableObject(QObject *parent = nullptr);

    /// Declares, in the constructor of the class that has the property \a key, that it changes with each of
    /// \a keyPaths: names of properties of this object, or paths from it ("options.logoContext.LogoType").
    /// Properties of one object may form chains and circles; paths must not lead back here. A path is looked
    /// up when somebody connects to a NOTIFY signal for the first time.
    void declareDependency(const QByteArray &key, const QByteArrayList &keyPaths);

    /// Tells that \a keys now have other values: emits their NOTIFY signals first, then those of all
    /// properties that depend on them, each once. Called by setters after storing.
    void notifyChanged(const QByteArrayList &keys);

    void connectNotify(const QMetaMethod &signal) override;

private:
    void observeKeyPaths();
    void emitNotifySignal(const QByteArray &key);
    [[nodiscard]] QByteArrayList withDependents(const QByteArrayList &keys) const;

    QMap<QByteArray, QByteArrayList> m_dependents; ///< key or key path -> keys that change with it
    bool m_observesKeyPaths = false;
};

} // namespace vornic
