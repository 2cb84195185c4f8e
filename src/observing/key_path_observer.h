#pragma once

#include <QByteArray>
#include <QMetaProperty>
#include <QObject>
#include <QPointer>
#include <QVariant>

#include <vector>

namespace vornic {

/// Follows a key path such as "options.logoContext.LogoType" from one object through QObject properties.
///
/// Made by whoever wants to hear of the value (a binding, a declared dependency). Main thread only.
class KeyPathObserver : public QObject
{
    Q_OBJECT
public:
    KeyPathObserver(QObject *root, const QByteArray &keyPath, QObject *parent = nullptr);

    /// Read afresh; an invalid variant while an object in the middle is null, has died or lacks the property.
    [[nodiscard]] QVariant value() const;
    /// False when there is no such property now, when it is read only or cannot take \a value.
    bool setValue(const QVariant &value);

signals:
    /// The value was set, or an object on the way to it was replaced or died. \a origin is the object that
    /// told of the change; null for one that died.
    void valueChanged(const QObject *origin);

private slots:
    void followFromSender();
    void forgetDestroyed(const QObject *object);

private:
    struct Hop {
        QObject *object;
        QMetaProperty property;
    };

    /// True when every key of the path has its object; the last hop then holds the value.
    [[nodiscard]] bool isComplete() const;
    [[nodiscard]] std::vector<Hop> resolvedHops() const;
    void follow();
    void subscribe(const Hop &hop);

    QPointer<QObject> m_root;
    QByteArrayList m_keys;
    std::vector<Hop> m_hops; ///< of living objects only; ends where the path is broken
};

} // namespace vornic
