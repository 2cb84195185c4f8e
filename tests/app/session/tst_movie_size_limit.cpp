#include "app/session/movie_size_limit.h"
#include "codec/PKMuxerContext.h"

#include <gtest/gtest.h>

namespace vornic {
namespace {

/// A movie of 8 Mbit/s, which is a million bytes a second, and of sound where there is one.
PKMuxerContext movieOf(int tracks = 0)
{
    PKMuxerContext movie(QStringLiteral("movie.mp4"));
    movie.setVideoBitrate(8'000'000);
    movie.setAudioCodecID(tracks > 0 ? PKMuxerContext::audioCodecAac : PKMuxerContext::audioCodecNone);
    if (tracks > 1)
        movie.setAudioTracks({ QStringLiteral("a"), QStringLiteral("b") });
    return movie;
}

constexpr std::uint64_t plenty = 1'000'000'000;

} // namespace

TEST(MovieSizeLimit, isReachedByTheBitRateALittleBefore)
{
    const MovieSizeLimit limit(10'000'000);
    EXPECT_FALSE(limit.isReached(movieOf(), 9.4, plenty));
    EXPECT_TRUE(limit.isReached(movieOf(), 9.6, plenty));
}

TEST(MovieSizeLimit, aScreenThatSeldomChangesTakesNoMoreThanWasSpooled)
{
    const MovieSizeLimit limit(10'000'000);
    EXPECT_FALSE(limit.isReached(movieOf(), 3600, 9'400'000));
    EXPECT_TRUE(limit.isReached(movieOf(), 3600, 9'600'000));
}

TEST(MovieSizeLimit, soundCountsWithEachOfItsTracks)
{
    // 20,000 bytes a second each.
    const MovieSizeLimit limit(10'000'000);
    EXPECT_FALSE(limit.isReached(movieOf(1), 470, 0));
    EXPECT_TRUE(limit.isReached(movieOf(1), 480, 0));
    EXPECT_FALSE(limit.isReached(movieOf(2), 235, 0));
    EXPECT_TRUE(limit.isReached(movieOf(2), 240, 0));
}

TEST(MovieSizeLimit, oneThatIsSmallEnoughIsNotWrittenAgain)
{
    MovieSizeLimit limit(10'000'000);
    EXPECT_TRUE(limit.holds(10'000'000));
    EXPECT_FALSE(limit.lowerBitRate(movieOf(), 10'000'000, 0));
    EXPECT_FALSE(limit.holds(10'000'001));
}

TEST(MovieSizeLimit, whatIsTooMuchIsTakenFromThePictures)
{
    MovieSizeLimit limit(10'000'000);
    EXPECT_EQ(limit.lowerBitRate(movieOf(), 18'000'000, 0), 4'000'000);
    // A million of sound stays: 17 million of pictures become 8.
    MovieSizeLimit withSound(10'000'000);
    EXPECT_EQ(withSound.lowerBitRate(movieOf(1), 18'000'000, 50), 3'764'705);
}

TEST(MovieSizeLimit, whatCannotBecomeSmallerIsLeft)
{
    MovieSizeLimit limit(10'000'000);
    EXPECT_TRUE(limit.lowerBitRate(movieOf(), 12'000'000, 0));
    EXPECT_TRUE(limit.lowerBitRate(movieOf(), 12'000'000, 0));
    EXPECT_FALSE(limit.lowerBitRate(movieOf(), 12'000'000, 0)) << "was written three times";
    MovieSizeLimit ofSound(10'000'000);
    EXPECT_FALSE(ofSound.lowerBitRate(movieOf(1), 12'000'000, 500)) << "which alone is too much";
}

} // namespace vornic
