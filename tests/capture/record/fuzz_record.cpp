/// Feeds random bytes and damaged archives of frame records and audio chunks to their readers, and composes
/// what comes out: fuzz_record [inputs [seed]].
///
/// Prints how many gave an object. Fails where hardly any frame came out: then the inputs test nothing.

#include "audio/PKAudioRecorderData.h"
#include "base/keyed_archive.h"
#include "capture/record/VNBufferDiscr.h"
#include "capture/record/frame_composer.h"
#include "capture/record/picture_spooler.h"
#include "capture/record/picture_unspooler.h"
#include "codec/PKVideoFrame2.h"
#include "display/bitmap_image.h"
#include "display/fake_display.h"
#include "support/fuzz_run.h"
#include "support/test_pictures.h"

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
    for (const std::uint32_t seed : { 1U, 1U, 2U }) {
        display->setPicture(test::noisePicture({ 49, 35 }, seed));
        const auto record = VNBufferDiscr::createWithScreenImage(display->grab(QRect(0, 0, 49, 35)));
        KeyedArchiver archiver;
        record->encodeWithCoder(archiver, pictures);
        archives.push_back(archiver.bytes());
    }
    const auto composed = VNBufferDiscr::createWithScreenImage(display->grab(QRect(0, 0, 33, 17)));
    static_cast<void>(composed->getVideoFrameWithLogoContext(nullptr, QRectF()));
    archives.push_back(archivedData(*composed));
    archives.push_back(
        archivedData(PKAudioRecorderData(QByteArray(400, 's'), defaultAudioStreamBasicDescription())));
    return archives;
}

QByteArray damaged(QByteArray bytes, test::FuzzRandom &random)
{
    for (int changes = 1 + random.below(4); changes > 0 && !bytes.isEmpty(); --changes) {
        const int place = random.below(bytes.size());
        switch (random.below(5)) {
        case 0:
            bytes[place] = static_cast<char>(bytes[place] ^ (1 << random.below(8)));
            break;
        case 1:
            bytes[place] = static_cast<char>(random.below(256));
            break;
        case 2:
            bytes.truncate(place);
            break;
        case 3:
            bytes.insert(place, random.bytes(8));
            break;
        default:
            bytes.remove(place, 1 + random.below(8));
        }
    }
    return bytes;
}

struct Tally {
    int records = 0;
    int frames = 0;
    int chunks = 0;
};

void feed(const QByteArray &bytes, PictureUnspooler &pictures, FrameComposer &composer, Tally &tally)
{
    const auto unarchiver = KeyedUnarchiver::create(bytes);
    if (!unarchiver)
        return;
    if (PKAudioRecorderData::createWithCoder(*unarchiver))
        ++tally.chunks;
    if (VNBufferDiscr::createWithCoder(*unarchiver)->recordImage())
        ++tally.records;
    if (VNBufferDiscr::createWithCoder(*unarchiver, pictures)
            ->getVideoFrameWithLogoContext(nullptr, QRectF(), &composer))
        ++tally.frames;
}

} // namespace

int main(int argc, char **argv)
{
    test::FuzzRun run(argc, argv, 100'000);
    test::FuzzRandom &random = run.random();
    const std::vector<QByteArray> archives = validArchives();
    PictureUnspooler pictures;
    FrameComposer composer;
    Tally tally;
    run.feedAll("records and chunks", [&](int) {
        const QByteArray &whole = archives[static_cast<std::size_t>(random.below(std::ssize(archives)))];
        const int kind = random.below(10);
        feed(kind == 0       ? random.bytes(300)
                 : kind == 1 ? whole
                             : damaged(whole, random),
             pictures,
             composer,
             tally);
    });
    std::printf("%d pictures, %d frames, %d chunks\n", tally.records, tally.frames, tally.chunks);
    setMainDisplay(nullptr);
    return tally.frames > run.count() / 20 ? 0 : 1;
}
