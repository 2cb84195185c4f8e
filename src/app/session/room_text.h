#pragma once

#include <QString>

namespace vornic {

struct RecordingRoom;

/// How a user is told of the room that a recording has; in the user's language, main thread only.

/// "3 h 10 min", rounded down, the rougher the longer it is.
[[nodiscard]] QString roughLength(double seconds);
/// As on disks: "1.9 GB".
[[nodiscard]] QString recordedSize(const RecordingRoom &room);
/// "1.9 GB, room for 3 h 10 min"; without the latter while it is unknown.
[[nodiscard]] QString sizeAndRoom(const RecordingRoom &room);
/// One sentence, for a room that is known: how long it lasts, and what happens then.
[[nodiscard]] QString littleRoom(const RecordingRoom &room);
/// What it means that \a folder, which holds the recording, lies in memory.
[[nodiscard]] QString liesInMemoryText(const QString &folder);

} // namespace vornic
