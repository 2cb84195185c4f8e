#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

namespace vornic {

struct StoredRecording;

/// What the window says of recordings that no movie has been made of; any thread.

/// "today, 14:05", "yesterday, 14:05", "Tuesday, 14:05" within a week before \a now, else with the date.
[[nodiscard]] QString startText(const QDateTime &start, const QDateTime &now = QDateTime::currentDateTime());
/// One sentence; empty without recordings.
[[nodiscard]] QString unfinishedSentence(const QList<StoredRecording> &recordings);
/// Two lines: start, and length and size.
[[nodiscard]] QString unfinishedEntry(const StoredRecording &recording);

} // namespace vornic
