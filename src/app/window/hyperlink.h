#pragma once

#include <QString>
#include <QUrl>

namespace vornic {

/// \a text as rich text that is a link to \a url over its whole length: blue and underlined.
[[nodiscard]] QString hyperlinkFromString(const QString &text, const QUrl &url);

} // namespace vornic
