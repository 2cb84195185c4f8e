#include "app/window/unfinished_recordings.h"

#include "app/session/left_behind.h"
#include "base/main_queue.h"
#include "capture/spool/VNBufferMgr.h"
#include "controls/skin_colors.h"
#include "display/bitmap_image.h"

#include <QPainter>
#include <QPixmap>
#include <QPointer>

#include <algorithm>
#include <utility>

namespace vornic {

namespace {

constexpr int largestRatio = 3;

/// A copy, small enough to be kept.
QImage smallPicture(const QString &id)
{
    const std::shared_ptr<const BitmapImage> picture = storedPicture(VNBufferMgr::cachePath(), id);
    if (!picture)
        return {};
    return picture->view()
        .scaled(thumbnailSize * largestRatio, Qt::KeepAspectRatio, Qt::SmoothTransformation)
        .copy();
}

} // namespace

UnfinishedRecordings::UnfinishedRecordings(QObject *parent)
    : QObject(parent)
{
}

UnfinishedRecordings::~UnfinishedRecordings()
{
    ++m_pictureRound; // the queue is waited for
}

const StoredRecording *UnfinishedRecordings::find(const QString &id) const
{
    const auto found = std::ranges::find(m_all, id, &StoredRecording::id);
    return found == m_all.end() ? nullptr : &*found;
}

void UnfinishedRecordings::cleanUpAndRead()
{
    m_queue.async(cleanUpLeftBehind);
    read();
}

void UnfinishedRecordings::read()
{
    m_queue.async([this] { readOnQueue(); });
}

void UnfinishedRecordings::readOnQueue()
{
    const QList<StoredRecording> recordings = storedRecordings(VNBufferMgr::cachePath());
    main_queue::async([self = QPointer(this), recordings] {
        if (!self)
            return;
        self->m_all = recordings;
        emit self->changed();
    });
}

void UnfinishedRecordings::forget(const QString &id)
{
    if (m_all.removeIf([&id](const StoredRecording &recording) { return recording.id == id; }) > 0)
        emit changed();
}

void UnfinishedRecordings::remove(const QString &id)
{
    ++m_pictureRound;
    m_queue.async([this, id] {
        QString whyNot;
        if (!deleteStoredRecording(VNBufferMgr::cachePath(), id, whyNot))
            main_queue::async([self = QPointer(this), whyNot] {
                if (self)
                    emit self->removalFailed(whyNot);
            });
        readOnQueue();
    });
}

void UnfinishedRecordings::askForPicture(const QString &id)
{
    m_queue.async([this, id, round = m_pictureRound.load()] {
        if (round != m_pictureRound)
            return;
        main_queue::async([self = QPointer(this), id, picture = smallPicture(id)] {
            if (self)
                emit self->pictureRead(id, picture);
        });
    });
}

void UnfinishedRecordings::whenLetGo(std::function<void()> action)
{
    ++m_pictureRound;
    m_queue.async([this, action = std::move(action)] {
        main_queue::async([self = QPointer(this), action] {
            if (self)
                action();
        });
    });
}

QPixmap thumbnail(const QImage &picture, double ratio)
{
    const QSize size = (QSizeF(thumbnailSize) * ratio).toSize();
    QPixmap pixmap(size);
    pixmap.fill(skin::recess());
    if (!picture.isNull()) {
        const QImage fitted = picture.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        QPainter painter(&pixmap);
        painter.drawImage(QPoint((size.width() - fitted.width()) / 2, (size.height() - fitted.height()) / 2),
                          fitted);
    }
    pixmap.setDevicePixelRatio(ratio);
    return pixmap;
}

} // namespace vornic
