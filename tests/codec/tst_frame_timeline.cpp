#include "base/PKTimebase.h"
#include "codec/PKVideoFrame2.h"
#include "codec/frame_timeline.h"

#include <QImage>

#include <gtest/gtest.h>

#include <ostream>
#include <vector>

namespace vornic {

void PrintTo(const FrameTimeline::Shown &shown, std::ostream *stream)
{
    *stream << shown.frames << " from " << shown.frame->timeStamp() << " to " << shown.end;
}

namespace testing {
namespace {

constexpr std::int64_t thirtieth = PKTimebase / 30;

/// A frame that is shown from \a begin to \a end and stands for \a frames.
auto shows(std::int64_t begin, std::int64_t end, std::int64_t frames)
{
    return [=](const FrameTimeline::Shown &shown) {
        return shown.frame->timeStamp() == begin && shown.end == end && shown.frames == frames;
    };
}

class FrameTimelineTest : public ::testing::Test
{
protected:
    void add(std::int64_t time, std::int64_t duration = 0)
    {
        m_last = std::make_shared<PKVideoFrame2>(QImage(1, 1, QImage::Format_RGB32));
        addTimed(time, duration);
    }
    /// The picture that was added last, once more.
    void addSame(std::int64_t time, std::int64_t duration = 0)
    {
        m_last = m_last->sharingPixels();
        addTimed(time, duration);
    }
    /// Reads everything.
    std::vector<FrameTimeline::Shown> shown()
    {
        FrameTimeline timeline([this]() -> std::shared_ptr<const PKVideoFrame2> {
            EXPECT_LE(m_next, m_frames.size()) << "asked again after the end";
            const std::size_t at = m_next++;
            return at < m_frames.size() ? m_frames[at] : nullptr;
        });
        std::vector<FrameTimeline::Shown> all;
        while (const auto next = timeline.next())
            all.push_back(*next);
        EXPECT_FALSE(timeline.next());
        m_skipped = timeline.framesSkipped();
        return all;
    }

    std::int64_t m_skipped = 0;

    /// The movie is to be enterable at the frame that was added last.
    void makeKey() { m_last->setIsKey(true); }

private:
    void addTimed(std::int64_t time, std::int64_t duration)
    {
        m_last->setTimeStamp(time);
        m_last->setDuration(duration);
        m_frames.push_back(m_last);
    }

    std::shared_ptr<PKVideoFrame2> m_last;
    std::vector<std::shared_ptr<const PKVideoFrame2>> m_frames;
    std::size_t m_next = 0;
};

TEST_F(FrameTimelineTest, ofNoFramesThereIsNone)
{
    EXPECT_TRUE(shown().empty());
}

TEST_F(FrameTimelineTest, eachFrameLastsUntilTheNextAndTheLastAsLongAsItSays)
{
    add(7);
    add(3007);
    add(3009, 1500);
    const auto all = shown();
    ASSERT_EQ(all.size(), 3U);
    EXPECT_PRED1(shows(7, 3007, 1), all[0]);
    EXPECT_PRED1(shows(3007, 3009, 1), all[1]);
    EXPECT_PRED1(shows(3009, 4509, 1), all[2]);
}

TEST_F(FrameTimelineTest, aLastFrameThatDoesNotSayHowLongLastsAThirtiethOfASecond)
{
    add(7);
    addSame(3007);
    const auto all = shown();
    ASSERT_EQ(all.size(), 1U);
    EXPECT_PRED1(shows(7, 3007 + thirtieth, 2), all[0]);
}

TEST_F(FrameTimelineTest, equalFramesAreOneToTheTick)
{
    add(1);
    addSame(3002);
    addSame(6000);
    add(9001);
    addSame(9002, 17);
    const auto all = shown();
    ASSERT_EQ(all.size(), 2U);
    EXPECT_PRED1(shows(1, 9001, 3), all[0]);
    EXPECT_PRED1(shows(9001, 9019, 2), all[1]);
}

TEST_F(FrameTimelineTest, equalFramesAreOneForAFifthOfASecondThenForTenthsAndThenForHalf)
{
    add(0);
    for (int i = 1; i < 32; ++i)
        addSame(i * thirtieth, thirtieth);
    const auto all = shown();
    ASSERT_EQ(all.size(), 6U);
    EXPECT_PRED1(shows(0, 6 * thirtieth, 6), all[0]);
    for (int i = 1; i < 4; ++i) {
        const std::int64_t begin = 3 * (i + 1) * thirtieth;
        EXPECT_PRED1(shows(begin, begin + 3 * thirtieth, 3), all[static_cast<std::size_t>(i)]);
    }
    EXPECT_PRED1(shows(PKTimebase / 2, PKTimebase, 15), all[4]);
    EXPECT_PRED1(shows(PKTimebase, PKTimebase + 2 * thirtieth, 2), all[5]);
}

TEST_F(FrameTimelineTest, eachChangeSettlesAnew)
{
    add(0);
    for (int i = 1; i < 25; ++i)
        addSame(i * thirtieth);
    add(25 * thirtieth);
    for (int i = 26; i < 35; ++i)
        addSame(i * thirtieth, thirtieth);
    const auto all = shown();
    ASSERT_EQ(all.size(), 8U);
    EXPECT_PRED1(shows(15 * thirtieth, 25 * thirtieth, 10), all[4]);
    EXPECT_PRED1(shows(25 * thirtieth, 31 * thirtieth, 6), all[5]);
    EXPECT_PRED1(shows(31 * thirtieth, 34 * thirtieth, 3), all[6]);
    EXPECT_PRED1(shows(34 * thirtieth, 35 * thirtieth, 1), all[7]);
}

TEST_F(FrameTimelineTest, whatShowsThePictureBeforeIsNotNew)
{
    add(0);
    for (int i = 1; i < 32; ++i)
        addSame(i * thirtieth);
    add(32 * thirtieth);
    add(33 * thirtieth, thirtieth);
    const auto all = shown();
    ASSERT_EQ(all.size(), 8U);
    for (std::size_t i = 0; i < all.size(); ++i)
        EXPECT_EQ(all[i].isNew, i == 0 || i >= 6) << i;
}

TEST_F(FrameTimelineTest, aKeyFrameIsNeverPartOfTheOneBefore)
{
    add(0);
    addSame(10);
    addSame(20);
    makeKey();
    const auto all = shown();
    ASSERT_EQ(all.size(), 2U);
    EXPECT_PRED1(shows(0, 20, 2), all[0]);
    EXPECT_TRUE(all[1].frame->isKey());
    EXPECT_FALSE(all[0].frame->isKey());
}

TEST_F(FrameTimelineTest, aFrameThatLastsLongerByItselfStaysAsItIs)
{
    add(0);
    addSame(3 * PKTimebase);
    addSame(3 * PKTimebase + 1, 1);
    const auto all = shown();
    ASSERT_EQ(all.size(), 2U);
    EXPECT_PRED1(shows(0, 3 * PKTimebase, 1), all[0]);
    EXPECT_PRED1(shows(3 * PKTimebase, 3 * PKTimebase + 2, 2), all[1]);
}

TEST_F(FrameTimelineTest, framesOutOfOrderAreLeftOutAlsoAmongEqualOnes)
{
    add(100);
    addSame(200);
    addSame(200);
    addSame(50);
    addSame(300, 9);
    const auto all = shown();
    ASSERT_EQ(all.size(), 1U);
    EXPECT_PRED1(shows(100, 309, 3), all[0]);
    EXPECT_EQ(m_skipped, 2);
}

TEST_F(FrameTimelineTest, ofFramesOfOneTimeTheNewestCounts)
{
    add(0);
    add(100);
    add(100);
    addSame(200, 5);
    const auto all = shown();
    ASSERT_EQ(all.size(), 2U);
    EXPECT_PRED1(shows(0, 100, 1), all[0]);
    EXPECT_PRED1(shows(100, 205, 2), all[1]) << "the newest and the one that equals it";
    EXPECT_EQ(m_skipped, 1);
}

} // namespace
} // namespace testing
} // namespace vornic
