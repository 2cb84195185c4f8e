/// What does not change on the screen does not change in the movie.

#include "base/PKTimebase.h"
#include "decoded_movie.h"
#include "movie_test_support.h"
#include "support/spooled_movie.h"
#include "support/test_pictures.h"

#include <QFontDatabase>
#include <QPainter>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>

namespace vornic::testing {
namespace {

constexpr QSize size(640, 360);
constexpr QRect cursor(202, 150, 2, 15);
/// Where the cursor may show: its blocks of 16 x 16, and those that are smoothed together with them.
constexpr QRect aroundCursor(176, 128, 64, 64);

/// A still page gets sharper for some seconds, at any bit rate that is worth one; what is measured comes behind.
constexpr int framesBefore = 240;
constexpr int framesWithCursor = 300;
constexpr int framesABlink = 15;

/// A key frame begins anew and, with the picture behind it, hits some pixels not quite as before. So many of a thousand may
/// differ by more than so many levels there: more would be seen as a pulse every two seconds.
constexpr double mostPixelsAtKeyFrame = 1;
constexpr int levelsAtKeyFrame = 8;
/// Elsewhere only rounding is left, in any plane.
constexpr int mostLevels = 3;
/// Decibels of luma that a later picture may have less than an earlier one; beyond the best of them nobody sees it.
constexpr double mostLoss = 0.25;
constexpr double bestSeen = 46;

struct BlinkingCursor {
    std::vector<TimedPicture> given; ///< one for each record
    std::vector<TimedPicture> decoded;
};

BlinkingCursor blinkingCursor()
{
    const QImage page = test::textPage(size, 1);
    QImage withCursor = page;
    QPainter(&withCursor).fillRect(cursor, Qt::black);
    test::SpooledMovie recording(size);
    recording.setPointer({ -100, -100 });
    recording.setPicture(page);
    for (int i = 0; i < framesBefore + framesWithCursor; ++i) {
        const int blink = (i - framesBefore) / framesABlink;
        if (i >= framesBefore && (i - framesBefore) % framesABlink == 0)
            recording.setPicture(blink % 2 == 0 ? withCursor : page);
        recording.record(i * PKTimebase / 30);
    }
    recording.end();
    const QTemporaryDir folder;
    const QString movie = folder.filePath(QStringLiteral("cursor.mp4"));
    EXPECT_FALSE(recording.write(movie).failure);
    BlinkingCursor result { {}, decodedMovie(movie) };
    recording.readBack([&](const PKVideoFrame2 &frame) { result.given.push_back(pictureOf(frame)); });
    return result;
}

class UnchangedPixels : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        ensureApplication();
        if (!QFontDatabase::families().isEmpty())
            s_movie = std::make_unique<BlinkingCursor>(blinkingCursor());
    }
    static void TearDownTestSuite() { s_movie.reset(); }
    void SetUp() override
    {
        if (!s_movie)
            GTEST_SKIP() << "there is no font to write a page with";
        ASSERT_FALSE(s_movie->decoded.empty());
    }

    static std::unique_ptr<BlinkingCursor> s_movie;
};

std::unique_ptr<BlinkingCursor> UnchangedPixels::s_movie;

TEST_F(UnchangedPixels, StayBesideABlinkingCursor)
{
    const auto &decoded = s_movie->decoded;
    int looked = 0;
    int sinceKey = 0;
    for (std::size_t i = 1; i < decoded.size(); ++i) {
        sinceKey = decoded[i].isKey ? 0 : sinceKey + 1;
        if (decoded[i].ticks < framesBefore * PKTimebase / 30)
            continue;
        ++looked;
        const Differences found = differencesOutside(decoded[i - 1], decoded[i], size, aroundCursor);
        if (sinceKey < 2)
            EXPECT_LE(found.partAbove(levelsAtKeyFrame) * 1000, mostPixelsAtKeyFrame)
                << "at " << decoded[i].ticks;
        else
            EXPECT_EQ(found.partAbove(mostLevels), 0) << "at " << decoded[i].ticks;
    }
    EXPECT_GE(looked, framesWithCursor / framesABlink);
}

TEST_F(UnchangedPixels, GetNoWorse)
{
    double best = 0;
    for (const TimedPicture &picture : s_movie->decoded) {
        const double error = lumaError(picture, shownAt(s_movie->given, picture.ticks), size);
        const double quality = std::min(decibels(error), bestSeen);
        EXPECT_GE(quality, best - mostLoss) << "at " << picture.ticks;
        best = std::max(best, quality);
    }
}

TEST_F(UnchangedPixels, TheCursorBlinksInTime)
{
    const auto darkest = [](const TimedPicture &picture) {
        const qsizetype middle = qsizetype { cursor.center().y() } * size.width() + cursor.left();
        return static_cast<uchar>(picture.planes[middle]);
    };
    for (const TimedPicture &given : s_movie->given) {
        const TimedPicture &shown = shownAt(s_movie->decoded, given.ticks);
        EXPECT_NEAR(darkest(shown), darkest(given), 40) << "at " << given.ticks;
    }
}

} // namespace
} // namespace vornic::testing
