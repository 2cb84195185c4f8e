/// Feeds random bytes and damaged archives of frame records and audio chunks to their readers, and composes
/// what comes out: fuzz_record [inputs] [seed].
///
/// Prints what gave an object and the peak memory; a crash or a sanitizer's report is the failure.
/// Deterministic for a seed.

#include "audio/PKAudioRecorderData.h"
#include "base/keyed_archive.h"
#include "base/log.h"
#include "capture/record/VNBufferDiscr.h"
#include "capture/record/frame_composer.h"
#include "capture/record/picture_spooler.h"
#include "codec/PKVideoFrame2.h"
#include "display/bitmap_image.h"
#include "display/fake_display.h"
#include "support/test_pictures.h"

#include <QRandomGenerator>

#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>

using namespace vornic;

namespace {

using Random = QRandomGenerator;

int below(Random &random, qsizetype limit)
{
    return random.bounded(static_cast<int>(limit));
}

QByteArray randomBytes(Random &random, int maxSize)
{
    QByteArray bytes(below(random, maxSize + 1), '\0');
    for (char &byte : bytes)
        byte = static_cast<char>(below(random, 256));
    return bytes;
}

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

QByteArray damaged(QByteArray bytes, Random &random)
{
    for (int changes = 1 + below(random, 4); changes > 0 && !bytes.isEmpty(); --changes) {
        const int place = below(random, bytes.size());
        switch (below(random, 5)) {
        case 0:
            bytes[place] = static_cast<char>(bytes[place] ^ (1 << below(random, 8)));
            break;
        case 1:
            bytes[place] = static_cast<char>(below(random, 256));
            break;
        case 2:
            bytes.truncate(place);
            break;
        case 3:
            bytes.insert(place, randomBytes(random, 8));
            break;
        default:
            bytes.remove(place, 1 + below(random, 8));
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
    const int count = argc > 1 ? std::atoi(argv[1]) : 100'000;
    Random random(argc > 2 ? static_cast<quint32>(std::atoi(argv[2])) : 1U);
    setLogSink([](const QString &) {});
    const std::vector<QByteArray> archives = validArchives();
    PictureUnspooler pictures;
    FrameComposer composer;
    Tally tally;
    for (int i = 0; i < count; ++i) {
        const QByteArray &whole = archives[static_cast<std::size_t>(below(random, 5))];
        const int kind = below(random, 10);
        feed(kind == 0       ? randomBytes(random, 300)
                 : kind == 1 ? whole
                             : damaged(whole, random),
             pictures,
             composer,
             tally);
    }
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("%d inputs: %d pictures, %d frames, %d chunks; %ld MiB at most\n",
                count,
                tally.records,
                tally.frames,
                tally.chunks,
                usage.ru_maxrss / 1024);
    setMainDisplay(nullptr);
    return tally.frames > count / 20 ? 0 : 1;
}
