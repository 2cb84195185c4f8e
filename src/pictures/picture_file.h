#pragma once

#include "pictures/picture.h"

#include <QString>

namespace vornic {

/// Pictures in files that a user names or drags. Only regular files are opened: a named pipe would be waited
/// for until somebody writes into it, and what a device holds may never end. Main thread only; blocks for the
/// disk.

/// Whether the file looks like a picture; its beginning is read, its name says nothing.
[[nodiscard]] bool isPictureFile(const QString &path);
/// The picture, upright. Null when it cannot be read; then \a whyNot, where it is asked for, ends the
/// sentence "It cannot be read: ".
[[nodiscard]] Picture readPictureFile(const QString &path, QString *whyNot = nullptr);

} // namespace vornic
