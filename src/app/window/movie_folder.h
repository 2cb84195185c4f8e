#pragma once

#include <QString>

namespace vornic::movie_folder {

/// Where movies are put; kept in the user defaults at once. Main thread only.

/// Where the last movie was put; the user's folder for movies, or their home, where that is not known or gone.
[[nodiscard]] QString current();
void setCurrent(const QString &folder);

/// \a name, or "\a name 2", "\a name 3" and so on: the first of which there is no file of the type \a type in
/// \a folder. Without the type's suffix.
[[nodiscard]] QString unusedName(const QString &folder, const QString &name, const QString &type);

} // namespace vornic::movie_folder
