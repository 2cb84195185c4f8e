#pragma once

#include <QString>

#include <functional>

namespace vornic {

/// Opens the file \a path with the program that the desktop has for its type, and returns at once. \a failed runs on
/// the main thread when there is none, or it cannot be started.
void openDocument(const QString &path, const std::function<void()> &failed);

} // namespace vornic
