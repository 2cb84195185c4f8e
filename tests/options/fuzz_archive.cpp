/// Feeds random bytes and damaged archives to the reader of stored options: fuzz_archive [inputs [seed]].
///
/// Prints how many gave an object, and the slowest archive. Fails where all or none gave one: then the inputs
/// test nothing.

#include "base/keyed_archive.h"
#include "display/fake_display.h"
#include "options/VNOption.h"
#include "support/fuzz_run.h"

#include <QElapsedTimer>
#include <QGuiApplication>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <memory>

using namespace vornic;

namespace {

using test::FuzzRandom;

QByteArray validArchive(bool withPicture)
{
    VNOption options;
    VNLogoContext *logo = options.logoContext();
    logo->setLogoText(QStringLiteral("Größe €"));
    (void)logo->fontAttrs();
    if (withPicture) {
        QImage picture(24, 16, QImage::Format_ARGB32);
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                picture.setPixel(x, y, qRgba(x * 10, y * 15, x * y % 256, 255 - x));
        logo->setNSImage(picture);
    }
    return archivedData(options);
}

/// Changes the values of the archive while its frame stays whole, so that the damage reaches the readers.
QByteArray withForeignHeads(QByteArray bytes, FuzzRandom &random)
{
    static const QByteArray heads[] = {
        QByteArray::fromHex("f97e00"),             // NaN
        QByteArray::fromHex("fb7ff0000000000000"), // infinity
        QByteArray::fromHex("fb7e37e43c8800759c"), // 1e300
        QByteArray::fromHex("1bffffffffffffffff"), // beyond 64 bits with a sign
        QByteArray::fromHex("3b7fffffffffffffff"), // the minimum of 64 bits
        QByteArray::fromHex("9b00000000ffffffff"), // a long array
        QByteArray::fromHex("bb00000000ffffffff"), // a long map
        QByteArray::fromHex("5b000000007fffffff"), // long bytes
        QByteArray::fromHex("7f60ff"),             // text in pieces
        QByteArray::fromHex("c1c1c1c1f6"),         // tags
        QByteArray::fromHex("a0"),                 // an empty object
        QByteArray::fromHex("60"),                 // empty text
    };
    const QByteArray &head = heads[random.below(std::size(heads))];
    const int at = random.below(bytes.size());
    return bytes.replace(at, random.below(2) == 0 ? head.size() : 1, head);
}

QByteArray damaged(QByteArray bytes, FuzzRandom &random)
{
    for (int times = 1 + random.below(4); times > 0 && !bytes.isEmpty(); --times) {
        if (random.below(6) == 0)
            bytes = withForeignHeads(bytes, random);
        else
            random.damage(bytes, random.below(bytes.size()));
    }
    return bytes;
}

/// A PNG's header with another size declared, and the checksum made right, inside the archive.
QByteArray withOtherPictureSize(QByteArray bytes, FuzzRandom &random)
{
    const qsizetype header = bytes.indexOf("IHDR");
    if (header < 0)
        return bytes;
    for (const qsizetype at : { header + 4, header + 8 })
        for (int i = 0; i < 4; ++i)
            bytes[at + i] = static_cast<char>(i < 2 && random.below(4) != 0 ? 0 : random.below(256));
    quint32 crc = 0xffffffff;
    for (qsizetype i = header; i < header + 17; ++i) {
        crc ^= static_cast<quint8>(bytes[i]);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xedb88320 : 0);
    }
    for (int i = 0; i < 4; ++i)
        bytes[header + 17 + i] = static_cast<char>(~crc >> (24 - 8 * i));
    return bytes;
}

/// Reads the archive and uses what came of it; true when there was an object.
bool isReadable(const QByteArray &bytes)
{
    const auto coder = KeyedUnarchiver::create(bytes);
    if (!coder)
        return false;
    const auto options = VNOption::createWithCoder(*coder);
    VNLogoContext *logo = options->logoContext();
    options->setWidth(options->width());
    options->setOffsetY(options->offsetY());
    (void)logo->getLogoRect();
    logo->setIsLogoTypeText(!logo->isLogoTypeText());
    (void)logo->getLogoRect();
    (void)logo->fontAttrs();
    const auto again = KeyedUnarchiver::create(archivedData(*options));
    if (!again)
        qFatal("What was read cannot be archived again.");
    return true;
}

/// A damaged archive, most often of options with a picture.
QByteArray nextInput(const QByteArray &plain, const QByteArray &withPicture, FuzzRandom &random)
{
    switch (random.below(6)) {
    case 0:
        return random.bytes(200);
    case 1:
        return withOtherPictureSize(withPicture, random);
    case 2:
        return damaged(plain, random);
    default:
        return damaged(withPicture, random);
    }
}

} // namespace

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // Damaged pictures make the image plugins print warnings.
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &message) {
        if (type == QtFatalMsg)
            std::fprintf(stderr, "%s\n", qPrintable(message));
    });
    const QGuiApplication application(argc, argv);
    setMainDisplay(std::make_shared<FakeDisplay>(QSize(1440, 900)));
    test::FuzzRun run(argc, argv, 2000);
    const QByteArray plain = validArchive(false);
    const QByteArray withPicture = validArchive(true);
    int readable = 0;
    qint64 slowestNs = 0;
    run.feedAll("archives of options", [&](int) {
        const QByteArray input = nextInput(plain, withPicture, run.random());
        QElapsedTimer timer;
        timer.start();
        readable += isReadable(input) ? 1 : 0;
        slowestNs = std::max(slowestNs, timer.nsecsElapsed());
    });
    std::printf("%d gave an object, slowest %.1f ms\n", readable, static_cast<double>(slowestNs) / 1e6);
    return readable > 0 && readable < run.count() ? 0 : 1;
}
