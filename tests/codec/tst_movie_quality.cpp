#include "base/PKTimebase.h"
#include "codec/PKScaleContext.h"
#include "codec/PKVideoFrame2.h"
#include "movie_test_support.h"

#include <QBuffer>
#include <QFileInfo>
#include <QFont>
#include <QFontDatabase>
#include <QPainter>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace vornic::testing {
namespace {

constexpr int width = 1280;
constexpr int height = 720;

/// A window of small text on a grey desktop: lines of words without meaning, some of them in colour.
QImage pageOfText()
{
    QImage page = flat({ width, height }, QColor(235, 236, 238));
    QPainter painter(&page);
    painter.fillRect(145, 40, width - 280, height - 80, Qt::white);
    painter.setClipRect(145, 40, width - 290, height - 80);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(12);
    painter.setFont(font);
    std::mt19937 random(5);
    for (int y = 60; y < height - 50; y += 17) {
        QString line;
        while (line.size() < 200) {
            for (auto letters = 2 + random() % 9; letters > 0; --letters)
                line += QLatin1Char(static_cast<char>('a' + random() % 26));
            line += u' ';
        }
        painter.setPen(random() % 6 == 0 ? QColor(0, 60, 170) : QColor(30, 30, 30));
        painter.drawText(165, y, line);
    }
    return page;
}

QImage throughJpeg(const QImage &picture)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, "jpg", 95);
    return QImage::fromData(bytes, "jpg");
}

/// Decibels between the luma of a frame and one decoded picture of the same size.
double lumaQuality(const PKVideoFrame2 &frame, const uchar *decoded)
{
    double squares = 0;
    for (int y = 0; y < height; ++y) {
        const uchar *row = frame.planeData(0) + y * frame.planeStride(0);
        for (int x = 0; x < width; ++x) {
            const double difference = row[x] - decoded[y * width + x];
            squares += difference * difference;
        }
    }
    return 10 * std::log10(255.0 * 255.0 / (squares / (width * height)));
}

TEST(MovieQuality, aStillPageOfSmallTextIsSharpAfterTwoSeconds)
{
    ensureApplication();
    if (QFontDatabase::families().isEmpty())
        GTEST_SKIP() << "there is no font to write a page with";
    const QImage page = pageOfText();
    PKScaleContext converter(width, width, height, height, PKPixelFormatRGB32, PKPixelFormatYUV420P);
    const auto original = converter.scaleFrame(PKVideoFrame2(page));
    const auto spooled = converter.scaleFrame(PKVideoFrame2(throughJpeg(page)));
    ListSource source;
    // One of a fifth of a second, three of a tenth each, then of half a second.
    constexpr int count = 12;
    constexpr int countInTwoSeconds = 7;
    for (int i = 0; i < 45; ++i) {
        auto frame = spooled->sharingPixels();
        frame->setTimeStamp(i * PKTimebase / 10);
        frame->setDuration(PKTimebase / 10);
        source.video.push_back(std::move(frame));
    }
    QTemporaryDir folder;
    const QString movie = folder.filePath(QStringLiteral("page.mp4"));
    ASSERT_TRUE(runTask(videoContext(movie, { width, height }), source).isComplete());
    const QByteArray planes = decodedPlanes(movie);
    const qsizetype pictureBytes = qsizetype { width } * height * 3 / 2;
    ASSERT_EQ(planes.size(), count * pictureBytes);
    for (int i = countInTwoSeconds; i < count; ++i) {
        EXPECT_GE(
            lumaQuality(*original, reinterpret_cast<const uchar *>(planes.constData()) + i * pictureBytes),
            40)
            << "frame " << i;
    }
}

TEST(MovieQuality, aMovingPictureKeepsToTheBitRate)
{
    constexpr int side = 320;
    std::mt19937 random(3);
    QImage cloth(2 * side, 2 * side, QImage::Format_RGB32);
    for (int y = 0; y < 2 * side; ++y) {
        for (int x = 0; x < 2 * side; ++x) {
            const int level = 128 + static_cast<int>(90 * std::sin(x * 0.05 + 3 * std::sin(y * 0.03)))
                + static_cast<int>(random() % 16);
            cloth.setPixel(x, y, qRgb(level, 255 - level, level / 2));
        }
    }
    ListSource source;
    constexpr int seconds = 8;
    for (int i = 0; i < 30 * seconds; ++i)
        source.add(cloth.copy(i * 7 % side, i * 3 % side, side, side), i * PKTimebase / 30, PKTimebase / 30);
    QTemporaryDir folder;
    const QString movie = folder.filePath(QStringLiteral("moving.mp4"));
    const auto context = videoContext(movie, { side, side });
    ASSERT_TRUE(runTask(context, source).isComplete());
    const double rate = 8.0 * static_cast<double>(QFileInfo(movie).size()) / seconds;
    EXPECT_GT(rate, 0.5 * context.videoBitrate());
    EXPECT_LT(rate, 1.5 * context.videoBitrate());
}

} // namespace
} // namespace vornic::testing
