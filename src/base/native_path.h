#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

namespace vornic {

/// Paths as the system has them, which are bytes and need not be UTF-8, as texts that keep every byte.
///
/// A byte that belongs to no UTF-8 character is a lone surrogate in the text, U+DC80 to U+DCFF, which no text that was
/// decoded otherwise can hold. Any thread.

[[nodiscard]] QString pathFromNative(QByteArrayView bytes);
[[nodiscard]] QByteArray nativePath(const QString &path);

/// An absolute path as a "file:" URI, for a way that takes only text; and back, where \a text is one, else itself.
[[nodiscard]] QString fileUri(const QString &path);
[[nodiscard]] QString pathFromFileUri(const QString &text);

/// The folder that \a path names a file in, "." where it names none; without a slash at its end.
[[nodiscard]] QString folderOfPath(const QString &path);
/// What stands behind the last slash.
[[nodiscard]] QString nameOfPath(const QString &path);

/// Something stands at \a path, be it a link that leads nowhere.
[[nodiscard]] bool isTaken(const QString &path);
/// Something stands where \a path leads to, links followed.
[[nodiscard]] bool isThere(const QString &path);
/// A folder, or a link to one, stands at \a path.
[[nodiscard]] bool isFolder(const QString &path);

} // namespace vornic
