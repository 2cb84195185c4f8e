#pragma once

#include "base/serial_queue.h"
#include "capture/spool/stored_recordings.h"

#include <QImage>
#include <QList>
#include <QObject>
#include <QString>

#include <atomic>
#include <functional>

namespace vornic {

/// The recordings that no movie has been made of, as they were read last.
///
/// Made by Recovery; lives on the main thread. A thread of its own reads the disk and deletes, so that nothing here
/// blocks; what it has found is told on the main thread.
class UnfinishedRecordings : public QObject
{
    Q_OBJECT
public:
    explicit UnfinishedRecordings(QObject *parent = nullptr);
    ~UnfinishedRecordings() override;

    /// Oldest first; empty before the first read() has ended.
    [[nodiscard]] const QList<StoredRecording> &all() const { return m_all; }
    /// Null where it is not in all().
    [[nodiscard]] const StoredRecording *find(const QString &id) const;

    /// Removes first what nobody can want.
    void cleanUpAndRead();
    void read();
    /// Takes it out of all(), and leaves it where it is.
    void forget(const QString &id);
    void remove(const QString &id);
    /// Answered by pictureRead(), once all that was asked for before is read.
    void askForPicture(const QString &id);
    /// Calls \a action when no recording is held open by this object; pictures that were asked for are given up.
    void whenLetGo(std::function<void()> action);

signals:
    /// all() is another.
    void changed();
    /// The one from its middle, of the thumbnailSize at most; null where there is none.
    void pictureRead(const QString &id, const QImage &picture);
    /// \a sentence: why it could not be deleted.
    void removalFailed(const QString &sentence);

private:
    void readOnQueue();

    QList<StoredRecording> m_all;
    std::atomic<unsigned> m_pictureRound = 0; ///< pictures of an earlier one are not wanted any more
    SerialQueue m_queue { "vornic found" };   ///< last: its thread ends before what it uses
};

/// Of a picture that stands for a recording, in logical pixels.
inline constexpr QSize thumbnailSize(80, 45);
/// \a picture on a dark ground, of the thumbnailSize at \a ratio device pixels for each logical one.
[[nodiscard]] QPixmap thumbnail(const QImage &picture, double ratio);

} // namespace vornic
