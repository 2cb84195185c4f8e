#pragma once

#include <QString>
#include <QStringList>

namespace vornic {

/// Which of \a titles the user means by typing \a typed while the one at \a current is selected; -1 for none.
/// Typing the same letter repeatedly goes through all titles that begin with it.
[[nodiscard]] qint64 titleForTyping(const QStringList &titles, const QString &typed, qint64 current);

} // namespace vornic
