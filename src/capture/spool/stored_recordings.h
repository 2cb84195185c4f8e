#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <memory>

namespace vornic {

class BitmapImage;

/// A recording in the cache folder that no movie has been made of, and that nobody is working on; a plain value.
struct StoredRecording {
    QString id;
    bool isReadable = false; ///< else only id and bytes are known
    QDateTime start;         ///< UTC
    double seconds = 0;      ///< up to the last picture
    std::uint64_t frames = 0;
    std::uint64_t bytes = 0; ///< on disk
    bool hasSound = false;
    QString movie; ///< the file that its movie was meant for; may be empty
};

/// All functions read the disk and block for as long as that takes; any thread.

/// Oldest first.
[[nodiscard]] QList<StoredRecording> storedRecordings(const QString &cachePath);
/// A picture from the middle of the recording; null where none can be read, or another program has it open.
[[nodiscard]] std::shared_ptr<const BitmapImage> storedPicture(const QString &cachePath, const QString &id);
/// False where it stays, with a sentence for the user in \a whyNot.
[[nodiscard]] bool deleteStoredRecording(const QString &cachePath, const QString &id, QString &whyNot);
/// Deletes what nobody can want any more: recordings whose movie is complete, and such that hold nothing. Returns the
/// folders where a dead program may have left a half-written movie.
QStringList cleanUpStoredRecordings(const QString &cachePath);

} // namespace vornic
