#pragma once

#include <QByteArray>
#include <QMetaProperty>
#include <QObject>
#include <QPointer>
#include <QVariant>

namespace vornic {

/// The property at the end of a key path such as "options.logoContext.LogoType": reads it, sets it and tells
/// when it has changed.
///
/// Made by a binding, and by an object whose properties depend on the path; main thread only. The objects on
/// the way are looked up once, by the constructor, as they stay the same for their owner's life.
class KeyPathObserver : public QObject
{
    Q_OBJECT
public:
    KeyPathObserver(QObject *root, const QByteArray &keyPath, QObject *parent = nullptr);

    /// An invalid variant where the path led to no property, or when the object that has it is gone.
    [[nodiscard]] QVariant value() const;
    /// False where there is no property, or when it is read-only or cannot take \a value.
    bool setValue(const QVariant &value);
    /// What value() gives; invalid where the path led to no property.
    [[nodiscard]] QMetaType metaType() const { return m_property.metaType(); }

signals:
    /// The property's NOTIFY signal was emitted.
    void valueChanged();

private:
    QPointer<QObject> m_object;
    QMetaProperty m_property;
};

} // namespace vornic
