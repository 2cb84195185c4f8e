#include "observing/key_path_binding.h"

#include <QPointer>

#include <utility>

namespace vornic {

KeyPathBinding::KeyPathBinding(QObject *control,
                               const char *controlProperty,
                               QObject *root,
                               const QByteArray &keyPath)
    : QObject(control)
    , m_control(control, controlProperty)
    , m_model(root, keyPath)
{
    show();
    connect(&m_model, &KeyPathObserver::valueChanged, this, &KeyPathBinding::show);
    connect(&m_control, &KeyPathObserver::valueChanged, this, &KeyPathBinding::store);
}

void KeyPathBinding::show()
{
    QVariant value = m_model.value();
    if (!value.isValid() || !value.convert(m_control.metaType()))
        value = QVariant(m_control.metaType());
    // Setting a text field to the text that it holds would move the user's cursor.
    if (m_control.value() == value)
        return;
    const QPointer<KeyPathBinding> self(this); // whoever observes the control may delete it, and us with it
    const bool wasShowing = std::exchange(m_isShowing, true);
    m_control.setValue(value);
    if (self)
        m_isShowing = wasShowing;
}

void KeyPathBinding::store()
{
    if (m_isShowing)
        return;
    const QPointer<KeyPathBinding> self(this);
    m_model.setValue(m_control.value());
    if (self)
        show();
}

} // namespace vornic
