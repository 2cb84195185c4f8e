#pragma once

#include <QString>
#include <QVariant>

namespace vornic::user_defaults {

/// The user's stored settings: QSettings, native format, organisation "kavlor", application "Vornic".
/// Main thread only.

/// An invalid variant when the key is absent.
[[nodiscard]] QVariant value(const QString &key);
void setValue(const QString &key, const QVariant &value);
void remove(const QString &key);
/// Writes to disk now; false when that failed.
bool synchronize();
/// Whether that can be expected to work. Tries it without a change.
[[nodiscard]] bool isWritable();
/// The path of the file on disk, which may not be there yet.
[[nodiscard]] QString location();

} // namespace vornic::user_defaults
