#pragma once

#include "observing/key_path_observer.h"

#include <QMetaProperty>
#include <QObject>
#include <QVariant>

namespace vornic {

/// Ties a property of a control to a key path, in both directions.
///
/// Made by whoever builds the window, as a child of the control, with which it dies. Main thread only.
///
/// The control shows the value that is stored: what the model clamped or refused is shown again, and a path
/// without a value shows as zero, false or empty. A control's property without NOTIFY signal only shows.
class KeyPathBinding : public QObject
{
    Q_OBJECT
public:
    KeyPathBinding(QObject *control, const char *controlProperty, QObject *root, const QByteArray &keyPath);

private slots:
    void store();

private:
    void show();

    QMetaProperty m_property;
    KeyPathObserver m_model;
    bool m_showing = false; ///< the control is being set by us
};

} // namespace vornic
