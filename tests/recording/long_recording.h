#pragma once

#include "base/PKTimebase.h"
#include "capture/record/VNBufferDiscr.h"
#include "capture/spool/VNBufferMgr.h"
#include "codec/PKMuxerContext.h"
#include "display/bitmap_image.h"
#include "support/test_pictures.h"

#include <QFile>
#include <QImage>

#include <array>
#include <memory>

namespace vornic {

/// Spools half a minute of noise beneath the cache folder \a cache, which the encoder needs some seconds for: long enough
/// for what is done to its writer. Its id.
inline QString storeLongRecording(const QString &cache, const QString &movie)
{
    constexpr QSize size(640, 360);
    constexpr int pictures = 300;
    qputenv("XDG_CACHE_HOME", QFile::encodeName(cache));
    VNBufferMgr spool(4);
    spool.readyToRecord();
    spool.setRecordRect(QRectF(QPointF(), QSizeF(size)));
    spool.setMuxerContext(std::make_shared<PKMuxerContext>(movie));
    const std::array<QImage, 2> noise { test::noisePicture(size, 1), test::noisePicture(size, 2) };
    for (std::uint64_t i = 0; i < pictures; ++i) {
        const auto record = VNBufferDiscr::createWithScreenImage(bitmapImageFrom(noise[i % 2]));
        record->setBufferTimestamp(i * PKTimebase / 10);
        spool.pushRecordBuffer(*record);
    }
    spool.endVideoRecord();
    const QString id = spool.recordingId();
    spool.keep();
    return id;
}

} // namespace vornic
