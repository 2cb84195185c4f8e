#pragma once

#include "audio/PKAudioRecorderData.h"
#include "capture/capture_fixture.h"
#include "capture/record/VNBufferDiscr.h"
#include "capture/spool/VNBufferMgr.h"
#include "capture/spool/journal_contents.h"
#include "capture/spool/recording_folder.h"
#include "codec/PKMuxerContext.h"
#include "support/test_pictures.h"

#include <QDir>
#include <QFile>

namespace vornic {

/// Recordings in the test's cache folder that nobody has open.
class KeptRecordingTest : public CaptureTest
{
protected:
    static constexpr QSize pictureSize { 96, 64 };

    void push(VNBufferMgr &manager, std::uint32_t seed, std::uint64_t timestamp)
    {
        const auto record
            = VNBufferDiscr::createWithScreenImage(grabOf(test::noisePicture(pictureSize, seed)));
        record->setBufferTimestamp(timestamp);
        manager.pushRecordBuffer(*record);
    }
    static void push(VNBufferMgr &manager, const QByteArray &samples)
    {
        manager.pushAudioBuffer(PKAudioRecorderData(samples, defaultAudioStreamBasicDescription()));
    }
    static void describe(VNBufferMgr &manager)
    {
        manager.setRecordRect(QRectF(QPointF(0, 0), pictureSize));
        const auto movie = std::make_shared<PKMuxerContext>("/nowhere/movie.mp4", PKMuxerContext::formatMp4);
        movie->setAudioCodecID(PKMuxerContext::audioCodecAac);
        manager.setMuxerContext(movie);
    }

    /// The id of a recording of \a frames pictures, 3000 ticks apart and all different, with a chunk of sound each.
    [[nodiscard]] QString left(int frames = 5)
    {
        VNBufferMgr manager(0);
        manager.readyToRecord();
        describe(manager);
        for (int i = 0; i < frames; ++i) {
            push(manager, static_cast<std::uint32_t>(i + 1), static_cast<std::uint64_t>(3000 * i));
            push(manager, QByteArray::number(i));
        }
        const QString id = manager.recordingId();
        manager.keep();
        return id;
    }

    [[nodiscard]] static QString cache() { return VNBufferMgr::cachePath(); }
    [[nodiscard]] static QString pathOf(const QString &id, const char *file = nullptr)
    {
        return cache() + "/recordings/" + id + (file ? u'/' + QLatin1StringView(file) : QString());
    }
    [[nodiscard]] static QByteArray bytesOf(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    static void setBytes(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    [[nodiscard]] static JournalContents journalOf(const QString &id)
    {
        return readJournal(bytesOf(pathOf(id, RecordingFolder::journalName)));
    }
    /// Turns a byte in the middle of the block \a number of the pictures.
    static void damage(const QString &id, std::size_t number)
    {
        const VNDataBlock block = journalOf(id).video.at(number);
        QByteArray bytes = bytesOf(pathOf(id, RecordingFolder::videoName));
        char &byte = bytes[static_cast<qsizetype>(block.offset() + block.length() / 2)];
        byte = static_cast<char>(~byte);
        setBytes(pathOf(id, RecordingFolder::videoName), bytes);
    }
};

} // namespace vornic
