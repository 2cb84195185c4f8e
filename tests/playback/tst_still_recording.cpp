/// A recording in which nothing happens for minutes: what is in the file, and what is told of it.

#include "base/PKTimebase.h"
#include "movie_test_support.h"
#include "support/spooled_movie.h"
#include "support/test_pictures.h"

#include <QJsonArray>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>

namespace vornic::testing {
namespace {

constexpr QSize size(320, 180);
constexpr int seconds = 300;
constexpr int framesASecond = 30;

class StillRecording : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        ensureApplication();
        test::SpooledMovie recording(size);
        recording.setPicture(test::knownPicture(size));
        for (int i = 0; i < seconds * framesASecond; ++i)
            recording.record(i * PKTimebase / framesASecond);
        recording.end();
        const QTemporaryDir folder;
        const QString movie = folder.filePath(QStringLiteral("still.mp4"));
        s_written = recording.write(movie);
        s_probed = probe(movie);
    }
    static QList<qint64> numbers(const char *section, const char *name)
    {
        return numbersOf(
            s_probed, QLatin1StringView(section), QStringLiteral("video"), QLatin1StringView(name));
    }

    static test::WrittenMovie s_written;
    static QJsonObject s_probed;
};

test::WrittenMovie StillRecording::s_written;
QJsonObject StillRecording::s_probed;

TEST_F(StillRecording, CountsAllItsFrames)
{
    ASSERT_FALSE(s_written.failure);
    EXPECT_EQ(s_written.statistics.framesWritten, seconds * framesASecond);
    EXPECT_EQ(s_written.statistics.framesSkipped, 0);
}

TEST_F(StillRecording, LastsAsLongAsItsRecords)
{
    const auto times = numbers("packets", "pts");
    const auto durations = numbers("packets", "duration");
    ASSERT_FALSE(times.isEmpty());
    EXPECT_EQ(times.first(), 0);
    EXPECT_EQ(times.last() + durations.last(), seconds * PKTimebase);
    for (qsizetype i = 1; i < times.size(); ++i)
        ASSERT_EQ(times[i], times[i - 1] + durations[i - 1]);
}

TEST_F(StillRecording, HasTwoPicturesASecondInItsFile)
{
    const auto durations = numbers("packets", "duration");
    EXPECT_LE(durations.size(), 2 * seconds + seconds / 10) << "the frame before lasts longer instead";
    EXPECT_LE(*std::max_element(durations.begin(), durations.end()), PKTimebase / 2);
}

} // namespace
} // namespace vornic::testing
