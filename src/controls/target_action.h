#pragma once

#include <QByteArray>
#include <QPointer>

class QWidget;

namespace vornic {

/// What a control calls when the user has changed it: an object and the name of one of its slots or
/// invokables, which takes the control (of a class that is complete for moc there) or nothing.
///
/// A member of the control; main thread only. Both are set separately, in any order; without one of them, or
/// when the object has no such function, nothing is called.
class TargetAction
{
public:
    /// Borrowed; may end before the control.
    void setTarget(QObject *target) { m_target = target; }
    [[nodiscard]] QObject *target() const { return m_target; }
    void setSelector(const QByteArray &selector) { m_selector = selector; }
    [[nodiscard]] const QByteArray &selector() const { return m_selector; }
    void send(QWidget &sender) const;

private:
    QPointer<QObject> m_target;
    QByteArray m_selector;
};

} // namespace vornic
