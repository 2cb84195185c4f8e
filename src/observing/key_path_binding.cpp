#include "observing/key_path_binding.h"

#include "base/log.h"

#include <QMetaMethod>
#include <QPointer>

#include <utility>

namespace vornic {

namespace {

QMetaProperty propertyNamed(const QObject *object, const char *name)
{
    const QMetaObject *meta = object->metaObject();
    const QMetaProperty property = meta->property(meta->indexOfProperty(name));
    if (!property.isValid()) {
        logMessage(QStringLiteral("%1 has no property \"%2\".")
                       .arg(QLatin1StringView(meta->className()), QLatin1StringView(name)));
    }
    return property;
}

} // namespace

KeyPathBinding::KeyPathBinding(QObject *control,
                               const char *controlProperty,
                               QObject *root,
                               const QByteArray &keyPath)
    : QObject(control)
    , m_property(propertyNamed(control, controlProperty))
    , m_model(root, keyPath)
{
    if (!m_property.isValid())
        return;
    show();
    connect(&m_model, &KeyPathObserver::valueChanged, this, &KeyPathBinding::show);
    if (m_property.hasNotifySignal()) {
        const int slot = staticMetaObject.indexOfSlot("store()");
        connect(control, m_property.notifySignal(), this, staticMetaObject.method(slot));
    }
}

void KeyPathBinding::show()
{
    QVariant value = m_model.value();
    if (!value.isValid() || !value.convert(m_property.metaType()))
        value = QVariant(m_property.metaType());
    // Setting a text field to the text that it holds would move the user's cursor.
    if (m_property.read(parent()) == value)
        return;
    const QPointer<KeyPathBinding> self(this);
    const QMetaProperty property = m_property; // a copy: an observer of the control may end it and us
    const bool wasShowing = std::exchange(m_showing, true);
    property.write(parent(), value);
    if (self)
        m_showing = wasShowing;
}

void KeyPathBinding::store()
{
    if (m_showing)
        return;
    const QPointer<KeyPathBinding> self(this);
    m_model.setValue(m_property.read(parent()));
    if (self)
        show();
}

} // namespace vornic
