#include "base/PKTimebase.h"
#include "codec/PKAudioFrame2.h"
#include "movie_test_support.h"

#include <QPainter>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>

namespace vornic::testing {
namespace {

/// A recording of a screen that changes now and then, with passes that are never quite as far apart.
class MovieStillTest : public ::testing::Test
{
protected:
    /// \a count passes with one picture.
    void addStill(int count)
    {
        const QImage picture
            = flat({ 64, 48 }, QColor::fromHsv(static_cast<int>(m_changes.size()) * 67 % 360, 200, 200));
        m_changes.append(m_now);
        for (int i = 0; i < count; ++i) {
            const qint64 duration = 2900 + m_passes++ * 37 % 211;
            m_source.add(picture, m_now, duration);
            m_now += duration;
        }
    }

    /// One at the beginning, and then one whenever a frame would end later than \a seconds behind the last one.
    void expectKeyFrames(qint64 seconds) const
    {
        const QList<qint64> keys = keyFrameTimes(probeDecoded(m_movie));
        ASSERT_EQ(keys.value(0, -1), 0);
        EXPECT_EQ(keys.size(), 1 + m_now / (seconds * PKTimebase));
        for (qsizetype i = 1; i < keys.size(); ++i) {
            EXPECT_LE(keys[i] - keys[i - 1], seconds * PKTimebase);
            EXPECT_GT(keys[i] - keys[i - 1], seconds * PKTimebase - PKTimebase / 2);
        }
    }

    [[nodiscard]] QList<qint64> numbers(const char *name) const
    {
        return numbersOf(
            probe(m_movie), QStringLiteral("packets"), QStringLiteral("video"), QLatin1StringView(name));
    }

    QTemporaryDir m_folder;
    QString m_movie = m_folder.filePath(QStringLiteral("still.mp4"));
    ListSource m_source;
    QList<qint64> m_changes; ///< when the picture becomes another, ticks
    qint64 m_now = 0;
    int m_passes = 0;
};

TEST_F(MovieStillTest, everyChangeIsShownAtItsTimeAndWhatStaysIsNotStoredAgain)
{
    for (const int count : { 1, 40, 1, 1, 7, 100, 2 })
        addStill(count);
    const auto report = runTask(videoContext(m_movie, { 64, 48 }), m_source);
    ASSERT_TRUE(report.isComplete()) << report.reason();
    EXPECT_EQ(report.statistics().framesWritten, m_passes);
    EXPECT_EQ(report.statistics().framesSkipped, 0);
    EXPECT_EQ(report.statistics().seconds, static_cast<double>(m_now) / PKTimebase);

    const QList<qint64> times = numbers("pts");
    const QList<qint64> durations = numbers("duration");
    for (const qint64 change : m_changes)
        EXPECT_TRUE(times.contains(change)) << change;
    for (qsizetype i = 0; i < times.size(); ++i) {
        const qint64 change = *std::prev(std::ranges::upper_bound(m_changes, times[i]));
        const qint64 age = times[i] - change;
        const qint64 part = age == 0 ? 5 : age < PKTimebase / 2 ? 10 : 2;
        EXPECT_LE(durations[i], PKTimebase / part) << "at " << times[i];
        EXPECT_EQ(times[i] + durations[i], i + 1 < times.size() ? times[i + 1] : m_now);
    }
    EXPECT_LT(times.size(), m_passes / 4);
}

TEST_F(MovieStillTest, whatStaysNeedsAKeyFrameEveryFiveMinutesOnly)
{
    addStill(2 * 300 * 30 + 600);
    ASSERT_TRUE(runTask(videoContext(m_movie, { 64, 48 }), m_source).isComplete());
    expectKeyFrames(300);
}

TEST_F(MovieStillTest, whatStaysHasMoreKeyFramesWithSoundWhichMayBeSought)
{
    addStill(70 * 30);
    const std::vector<std::byte> silence(8000);
    for (int second = 0; second < 70; ++second)
        m_source.audio.push_back(std::make_shared<PKAudioFrame2>(0, 1, 8000, 8000, silence.data()));
    PKMuxerContext context = videoContext(m_movie, { 64, 48 });
    context.setAudioCodecID(PKMuxerContext::audioCodecAac);
    ASSERT_TRUE(runTask(context, m_source).isComplete());
    expectKeyFrames(30);
}

TEST_F(MovieStillTest, aFrameThatIsToBeAKeyFrameIsOneThoughNothingHasChanged)
{
    addStill(40);
    const auto key = m_source.video[20]->sharingPixels();
    key->setIsKey(true);
    m_source.video[20] = key;
    ASSERT_TRUE(runTask(videoContext(m_movie, { 64, 48 }), m_source).isComplete());
    EXPECT_EQ(keyFrameTimes(probeDecoded(m_movie)), (QList<qint64> { 0, key->timeStamp() }));
}

TEST_F(MovieStillTest, aChangeIsAKeyFrameOrHasOneWithinTwoSeconds)
{
    for (const int count : { 1, 1, 200, 30, 100, 1, 1, 1, 90, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 300 })
        addStill(count);
    ASSERT_TRUE(runTask(videoContext(m_movie, { 64, 48 }), m_source).isComplete());
    const QList<qint64> keys = keyFrameTimes(probeDecoded(m_movie));
    for (qsizetype i = 0; i < keys.size(); ++i) {
        const qint64 end = i + 1 < keys.size() ? keys[i + 1] : m_now;
        const auto isBetween = [&](qint64 change) { return keys[i] < change && change < end; };
        EXPECT_TRUE(end - keys[i] <= 2 * PKTimebase || std::ranges::none_of(m_changes, isBetween))
            << "between " << keys[i] << " and " << end;
    }
    EXPECT_LT(keys.size(), 10) << "where nothing changes, there need be none";
}

constexpr QSize pageSize(640, 368);
constexpr QRect cursor(300, 150, 2, 16);

/// Rows of small dark shapes on white, and the cursor where it is shown.
QImage pageWithCursor(bool hasCursor)
{
    QImage page = flat(pageSize, Qt::white);
    QPainter painter(&page);
    std::mt19937 random(7);
    for (int y = 10; y + 10 < pageSize.height(); y += 17)
        for (int x = 20; x + 30 < pageSize.width(); x += 3 + static_cast<int>(random() % 6))
            painter.fillRect(x,
                             y + static_cast<int>(random() % 3),
                             2,
                             3 + static_cast<int>(random() % 6),
                             QColor(30, 30, 40));
    painter.fillRect(cursor, hasCursor ? Qt::black : Qt::white);
    return page;
}

/// Of the luma of two decoded pictures, apart from all that a block with the cursor in it may reach.
struct LumaDifference {
    double shareOfPixels = 0; ///< that differ
    int largest = 0;
};

LumaDifference differenceBesideTheCursor(const QByteArray &planes, qsizetype first, qsizetype second)
{
    const qsizetype pictureBytes = qsizetype { pageSize.width() } * pageSize.height() * 3 / 2;
    const QRect left = cursor.adjusted(-24, -24, 24, 24);
    LumaDifference result;
    for (int y = 0; y < pageSize.height(); ++y) {
        for (int x = 0; x < pageSize.width(); ++x) {
            const auto lumaOf = [&](qsizetype picture) {
                return static_cast<uchar>(planes[picture * pictureBytes + y * pageSize.width() + x]);
            };
            const int difference = left.contains(x, y) ? 0 : std::abs(lumaOf(first) - lumaOf(second));
            result.shareOfPixels += difference > 0 ? 1.0 / pageSize.width() / pageSize.height() : 0;
            result.largest = std::max(result.largest, difference);
        }
    }
    return result;
}

TEST_F(MovieStillTest, whatStaysBesideABlinkingCursorIsTheSamePixels)
{
    const QImage with = pageWithCursor(true);
    const QImage without = pageWithCursor(false);
    for (int i = 0; i < 300; ++i)
        m_source.add(i / 15 % 2 == 0 ? with : without, i * PKTimebase / 30, PKTimebase / 30);
    ASSERT_TRUE(runTask(videoContext(m_movie, pageSize), m_source).isComplete());
    const QJsonObject probed = probeDecoded(m_movie);
    const QList<qint64> isKey
        = numbersOf(probed, QStringLiteral("frames"), QStringLiteral("video"), QStringLiteral("key_frame"));
    constexpr int picturesABlink = 4;
    ASSERT_EQ(isKey.size(), 20 * picturesABlink);
    const QByteArray planes = decodedPlanes(m_movie);
    int compared = 0;
    // Some seconds long the page gets sharper.
    for (qsizetype i = 8 * picturesABlink; i < isKey.size(); ++i) {
        // A key frame is made of nothing, and the picture behind it makes up for what that had to leave out.
        if (isKey[i] == 1 || isKey[i - 1] == 1)
            continue;
        const LumaDifference difference = differenceBesideTheCursor(planes, i - 1, i);
        EXPECT_LT(difference.shareOfPixels, 0.005) << "picture " << i;
        EXPECT_LE(difference.largest, 8) << "picture " << i;
        ++compared;
    }
    EXPECT_GE(compared, 6 * picturesABlink);
}

} // namespace
} // namespace vornic::testing
