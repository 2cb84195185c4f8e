#pragma once

#include "observing/key_path_observer.h"

#include <QMetaProperty>
#include <QStringList>

#include <memory>
#include <utility>
#include <vector>

namespace vornic {

/// Collects the names of an object's properties as they are told to have changed.
///
/// Made by tests on the stack; main thread.
class Told
{
public:
    explicit Told(QObject *object)
    {
        const QMetaObject *meta = object->metaObject();
        for (int i = QObject::staticMetaObject.propertyCount(); i < meta->propertyCount(); ++i) {
            const QString name = QString::fromLatin1(meta->property(i).name());
            m_observers.push_back(std::make_unique<KeyPathObserver>(object, name.toLatin1()));
            QObject::connect(m_observers.back().get(), &KeyPathObserver::valueChanged, [this, name] {
                m_names.append(name);
            });
        }
    }

    /// The names told since the last call, sorted; one told twice stands twice.
    [[nodiscard]] QStringList take()
    {
        m_names.sort();
        return std::exchange(m_names, {});
    }

private:
    std::vector<std::unique_ptr<KeyPathObserver>> m_observers;
    QStringList m_names;
};

} // namespace vornic
