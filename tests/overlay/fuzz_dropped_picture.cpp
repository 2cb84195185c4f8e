/// Drops damaged pictures, and files that are none: fuzz_dropped_picture [inputs [seed]].
///
/// What is taken must be within the limits of a picture. Fails where all or none were taken: then the inputs test
/// nothing.

#include "overlay/dropped_picture.h"
#include "pictures/picture.h"
#include "support/fuzz_run.h"
#include "support/test_pictures.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QMimeData>
#include <QTemporaryDir>
#include <QUrl>

#include <algorithm>
#include <cstdio>

using namespace vornic;

namespace {

using test::FuzzRandom;

QList<QByteArray> wholePictures()
{
    QList<QByteArray> pictures;
    for (const char *format : { "png", "jpg", "bmp", "webp", "tiff", "ppm", "xpm", "gif" }) {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        if (test::noisePicture({ 19, 12 }, 7).save(&buffer, format))
            pictures += bytes;
    }
    pictures += QByteArrayLiteral(
        "GIF89a\x03\0\x02\0\xf0\0\0\xff\0\0\0\0\xff,\0\0\0\0\x03\0\x02\0\0\x02\x03\x84\x6f\x05\0;");
    pictures += "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='7'><path d='M0 0l9 7z'/></svg>";
    return pictures;
}

QByteArray damaged(QByteArray bytes, FuzzRandom &random)
{
    // Where formats tell their sizes, more often.
    for (int times = random.below(5); times > 0 && !bytes.isEmpty(); --times)
        random.damage(
            bytes, random.below(random.below(2) == 0 ? std::min<qsizetype>(bytes.size(), 64) : bytes.size()));
    return bytes;
}

QByteArray nextInput(const QList<QByteArray> &pictures, FuzzRandom &random)
{
    return random.below(10) == 0 ? random.bytes(300)
                                 : damaged(pictures[random.below(pictures.size())], random);
}

/// Where a file manager would say that it is.
QUrl urlOf(const QString &path, FuzzRandom &random)
{
    switch (random.below(30)) {
    case 0:
        return QUrl(QString::fromLatin1(random.bytes(40)));
    case 1:
        return QUrl::fromLocalFile(path + QString::fromLatin1(random.bytes(8)));
    default:
        return QUrl::fromLocalFile(path);
    }
}

/// Whether a picture came of it.
bool isTaken(const QMimeData &dropped)
{
    const bool looksLikeOne = holdsPicture(&dropped);
    const Picture picture = droppedPicture(&dropped);
    if (picture.isNull())
        return false;
    if (!looksLikeOne)
        qFatal("A picture is taken that was refused while it was dragged.");
    if (qint64(picture.image().width()) * picture.image().height() > Picture::maxPixels)
        qFatal("A picture of %d x %d is taken.", picture.image().width(), picture.image().height());
    return true;
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
    test::FuzzRun run(argc, argv, 20'000);
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("dropped"));
    const QList<QByteArray> pictures = wholePictures();
    int taken = 0;
    qint64 slowestNs = 0;
    run.feedAll("dropped pictures", [&](int) {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            qFatal("%s", qPrintable(file.errorString()));
        file.write(nextInput(pictures, run.random()));
        file.close();
        QMimeData dropped;
        dropped.setUrls({ urlOf(path, run.random()) });
        QElapsedTimer timer;
        timer.start();
        taken += isTaken(dropped) ? 1 : 0;
        slowestNs = std::max(slowestNs, timer.nsecsElapsed());
    });
    std::printf("%d were taken, slowest %.1f ms\n", taken, static_cast<double>(slowestNs) / 1e6);
    return taken > 0 && taken < run.count() ? 0 : 1;
}
