/// Feeds random bytes and damaged archives of frame records and audio chunks to their readers, and composes
/// what comes out: fuzz_record [inputs [seed]].
///
/// Prints how many gave an object. Fails where hardly any frame came out, or hardly any that was told by its
/// changes: then the inputs test nothing.

#include "audio/PKAudioRecorderData.h"
#include "audio/chunk_spooler.h"
#include "audio/chunk_unspooler.h"
#include "base/PKTimebase.h"
#include "base/keyed_archive.h"
#include "capture/record/VNBufferDiscr.h"
#include "capture/record/frame_composer.h"
#include "capture/record/picture_keys.h"
#include "capture/record/picture_spooler.h"
#include "capture/record/picture_unspooler.h"
#include "codec/PKVideoFrame2.h"
#include "display/bitmap_image.h"
#include "display/fake_display.h"
#include "support/fuzz_run.h"
#include "support/test_pictures.h"

#include <QCborMap>
#include <QCborValue>

#include <cstdio>
#include <memory>
#include <vector>

using namespace vornic;

namespace {

std::vector<QByteArray> validArchives()
{
    const auto display = std::make_shared<FakeDisplay>(QSize(64, 48));
    setMainDisplay(display);
    std::vector<QByteArray> archives;
    PictureSpooler pictures;
    QImage picture = test::noisePicture({ 49, 35 }, 1);
    std::uint64_t ticks = 0;
    // Whole, a mark, changes twice, and a whole one that is due.
    for (const int newBands : { 3, 0, 1, 2, 1 }) {
        for (int band = 0; band < newBands; ++band)
            picture.setPixel(7, 16 * band, ~picture.pixel(7, 16 * band));
        display->setPicture(picture);
        const auto record = VNBufferDiscr::createWithScreenImage(display->grab(QRect(0, 0, 49, 35)));
        record->setBufferTimestamp(ticks);
        ticks += PKTimebase * 3 / 5;
        KeyedArchiver archiver;
        record->encodeWithCoder(archiver, pictures);
        archives.push_back(archiver.bytes());
    }
    const auto composed = VNBufferDiscr::createWithScreenImage(display->grab(QRect(0, 0, 33, 17)));
    static_cast<void>(composed->getVideoFrameWithLogoContext(nullptr, QRectF()));
    archives.push_back(archivedData(*composed));
    ChunkSpooler chunks;
    for (int i = 0; i < 2; ++i) {
        KeyedArchiver archiver;
        chunks.encode(PKAudioRecorderData(QByteArray(400, 's'), defaultAudioStreamBasicDescription()),
                      archiver);
        archives.push_back(archiver.bytes());
    }
    return archives;
}

/// Damages only the picture in an archive, which stays one.
QByteArray damagedInside(const QByteArray &archive, test::FuzzRandom &random)
{
    QCborMap map = QCborValue::fromCbor(archive).toMap();
    for (const QLatin1StringView key : { pictureKey, changedBandsKey, newBandsKey }) {
        if (map.contains(key))
            map[key] = random.damaged(map[key].toByteArray(), 4);
    }
    return map.toCborValue().toCbor();
}

struct Tally {
    int records = 0;
    int frames = 0;
    int framesByChanges = 0;
    int chunks = 0;
};

/// Those who read one input after the other.
struct Readers {
    ChunkUnspooler chunks;
    PictureUnspooler pictures;
    FrameComposer composer;
};

void feed(const QByteArray &bytes, Readers &readers, Tally &tally)
{
    const auto unarchiver = KeyedUnarchiver::create(bytes);
    if (!unarchiver)
        return;
    if (readers.chunks.decode(*unarchiver))
        ++tally.chunks;
    if (VNBufferDiscr::createWithCoder(*unarchiver)->recordImage())
        ++tally.records;
    if (VNBufferDiscr::createWithCoder(*unarchiver, readers.pictures)
            ->getVideoFrameWithLogoContext(nullptr, QRectF(), &readers.composer)) {
        ++tally.frames;
        if (unarchiver->containsValueForKey(changedBandsKey))
            ++tally.framesByChanges;
    }
}

QByteArray input(const QByteArray &whole, test::FuzzRandom &random)
{
    switch (random.below(10)) {
    case 0:
        return random.bytes(300);
    case 1:
    case 2:
    case 3:
        return whole;
    case 4:
    case 5:
    case 6:
        return damagedInside(whole, random);
    default:
        return random.damaged(whole, 4);
    }
}

} // namespace

int main(int argc, char **argv)
{
    test::FuzzRun run(argc, argv, 100'000);
    test::FuzzRandom &random = run.random();
    const std::vector<QByteArray> archives = validArchives();
    Readers readers;
    Tally tally;
    run.feedAll("records and chunks", [&](int) {
        const QByteArray &whole = archives[static_cast<std::size_t>(random.below(std::ssize(archives)))];
        feed(input(whole, random), readers, tally);
    });
    std::printf("%d pictures, %d frames, of which %d by changes, %d chunks\n",
                tally.records,
                tally.frames,
                tally.framesByChanges,
                tally.chunks);
    setMainDisplay(nullptr);
    return tally.frames > run.count() / 20 && tally.framesByChanges > run.count() / 100 ? 0 : 1;
}
