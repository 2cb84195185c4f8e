#include "controls/target_action.h"

#include <QMetaMethod>
#include <QWidget>

namespace vornic {

namespace {

bool takes(const QMetaMethod &method, const QWidget &sender)
{
    if (method.parameterCount() == 0)
        return true;
    const QMetaObject *wanted = method.parameterMetaType(0).metaObject();
    return method.parameterCount() == 1 && wanted && sender.metaObject()->inherits(wanted);
}

} // namespace

void TargetAction::send(QWidget &sender) const
{
    if (!m_target)
        return;
    const QMetaObject &type = *m_target->metaObject();
    for (int index = type.methodCount() - 1; index >= 0; --index) {
        const QMetaMethod method = type.method(index);
        if (method.name() != m_selector || !takes(method, sender))
            continue;
        // A pointer to any of a widget's classes is the same address: QObject comes first in all of them.
        const QWidget *argument = &sender;
        if (method.parameterCount() == 0)
            method.invoke(m_target);
        else
            method.invoke(m_target, QGenericArgument(method.parameterTypes().at(0), &argument));
        return;
    }
}

} // namespace vornic
