#pragma once

#include "observing/key_path_observer.h"

#include <QObject>

namespace vornic {

/// Ties a property of a control to a key path, in both directions.
///
/// Made by whoever builds the window; a child of the control, with which it dies. Main thread only.
///
/// The control shows the value that is stored: where the model clamps or refuses a value, the control goes
/// back to what the model holds. A path without a value shows as zero, false or empty. Where the control's
/// property has no NOTIFY signal, it shows the value and never stores one.
class KeyPathBinding : public QObject
{
    Q_OBJECT
public:
    KeyPathBinding(QObject *control, const char *controlProperty, QObject *root, const QByteArray &keyPath);

private:
    void show();
    void store();

    KeyPathObserver m_control;
    KeyPathObserver m_model;
    bool m_isShowing = false; ///< the control's property is being set by show()
};

} // namespace vornic
