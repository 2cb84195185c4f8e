#pragma once

#include "base/PKTimebase.h"
#include "capture/record/VNBufferDiscr.h"
#include "capture/spool/VNBufferMgr.h"
#include "capture/spool/stored_recordings.h"
#include "codec/PKMuxerContext.h"
#include "display/bitmap_image.h"

#include <QDir>
#include <QFile>
#include <QImage>

#include <gtest/gtest.h>

#include <memory>

namespace vornic::test {

inline QString recordingsFolder()
{
    return VNBufferMgr::cachePath() + "/recordings";
}

/// Begins a recording in \a spool for a movie in \a movie, of one picture a second.
inline void beginRecording(VNBufferMgr &spool, const QString &movie, int seconds, QColor colour = Qt::blue)
{
    constexpr QSize size(320, 180);
    spool.setRecordRect(QRectF(QPointF(), QSizeF(size)));
    spool.readyToRecord();
    spool.setRecordRect(QRectF(QPointF(), QSizeF(size)));
    auto context = std::make_shared<PKMuxerContext>(movie);
    context->setAudioCodecID(PKMuxerContext::audioCodecNone);
    spool.setMuxerContext(context);
    for (int second = 0; second <= seconds; ++second) {
        QImage picture(size, QImage::Format_RGB32);
        picture.fill(second == 0 ? QColor(Qt::white) : colour);
        const auto record = VNBufferDiscr::createWithScreenImage(bitmapImageFrom(picture));
        record->setBufferTimestamp(static_cast<std::uint64_t>(second) * PKTimebase);
        spool.pushRecordBuffer(*record);
    }
    spool.endVideoRecord();
}

/// A recording that its program did not finish; its id.
inline QString storeRecording(const QString &movie, int seconds, QColor colour = Qt::blue)
{
    VNBufferMgr spool(4);
    beginRecording(spool, movie, seconds, colour);
    const QString id = spool.recordingId();
    spool.keep();
    EXPECT_FALSE(id.isEmpty());
    return id;
}

/// The same recording once more, under another id.
inline void copyRecording(const QString &id, const QString &copy)
{
    const QDir all(recordingsFolder());
    EXPECT_TRUE(all.mkdir(copy));
    for (const QString &name : QDir(all.filePath(id)).entryList(QDir::Files))
        EXPECT_TRUE(QFile::copy(all.filePath(id + "/" + name), all.filePath(copy + "/" + name)));
}

inline void damageJournal(const QString &id)
{
    QFile journal(recordingsFolder() + "/" + id + "/journal");
    EXPECT_TRUE(journal.open(QIODevice::WriteOnly) && journal.write(QByteArray(3000, 'x')) == 3000);
}

inline void removeAllRecordings()
{
    QDir(recordingsFolder()).removeRecursively();
}

} // namespace vornic::test
