#include "audio/capture_timeline.h"

#include <gtest/gtest.h>

namespace vornic {

/// A device of 1000 frames a second whose first frame is captured at 100 s.
class CaptureTimelineTest : public ::testing::Test
{
protected:
    /// Twenty frames that were captured up to \a time, and an answer of the server to go with them, late by
    /// \a error seconds.
    void deliver(double error = 0)
    {
        m_captured += 20;
        const double now = 100 + m_lost + m_captured / 1000;
        timeline.arrived(now);
        timeline.addAnswer(now + error, m_captured);
    }
    void settle()
    {
        while (!timeline.isSettled())
            deliver();
        timeline.leaveOut(static_cast<std::uint64_t>(m_captured));
    }
    double now() const { return 100 + m_lost + m_captured / 1000; }
    CaptureTimeline::Placement placeNext(double error = 0)
    {
        deliver(error);
        return timeline.place(20);
    }

    CaptureTimeline timeline { 1000 };
    double m_captured = 0;
    double m_lost = 0; ///< seconds in which the device slept
};

TEST_F(CaptureTimelineTest, WhatWasCapturedBeforeTheStartIsDropped)
{
    settle();
    // 20 ms of lead-in that end 30 ms from now: one block and a half are too early.
    timeline.start(now() + 0.010, 20);
    EXPECT_EQ(placeNext().drop, 20U);
    EXPECT_EQ(placeNext().drop, 10U);
    const auto third = placeNext();
    EXPECT_EQ(third.drop, 0U);
    EXPECT_EQ(third.silence, 0U);
}

TEST_F(CaptureTimelineTest, FramesThatComeBeforeTheyAreHeardWaitBehindSilence)
{
    settle();
    timeline.start(now() - 0.035, 20);
    EXPECT_EQ(placeNext().silence, 15U);
    EXPECT_EQ(placeNext().silence, 0U);
}

TEST_F(CaptureTimelineTest, OddAnswersMoveNothing)
{
    settle();
    timeline.start(now() - 0.020, 20);
    static_cast<void>(placeNext());
    for (int i = 0; i < 50; ++i) {
        const auto placement = placeNext(i % 4 == 0 ? 0.3 : i % 4 == 1 ? -0.3 : 0.002);
        EXPECT_EQ(placement.silence, 0U);
        EXPECT_EQ(placement.drop, 0U);
    }
}

TEST_F(CaptureTimelineTest, LostFramesBecomeSilence)
{
    settle();
    timeline.start(now() - 0.020, 20);
    static_cast<void>(placeNext());
    m_lost = 0.1; // an overrun, too short to be a pause
    std::uint64_t silence = 0;
    for (int i = 0; i < 20; ++i)
        silence += placeNext().silence;
    EXPECT_EQ(silence, 100U);
}

TEST_F(CaptureTimelineTest, AfterAPauseTheOldAnswersCountNoMore)
{
    settle();
    timeline.start(now() - 0.020, 20);
    static_cast<void>(placeNext());
    m_lost = 5;
    deliver();
    EXPECT_FALSE(timeline.isSettled());
    std::uint64_t held = 20;
    for (; !timeline.isSettled(); held += 20)
        deliver();
    EXPECT_EQ(timeline.place(held).silence, 5000U);
}

TEST_F(CaptureTimelineTest, AReopenedDeviceFindsItsPlaceExactly)
{
    settle();
    timeline.start(now() - 0.020, 20);
    static_cast<void>(placeNext());
    timeline.reopened();
    EXPECT_FALSE(timeline.isSettled());
    // It opens 50 ms later and counts from nothing.
    CaptureTimeline::Placement placement;
    const double opened = now() + 0.050;
    for (int i = 1; !timeline.isSettled(); ++i) {
        timeline.arrived(opened + i * 0.020);
        timeline.addAnswer(opened + i * 0.020, i * 20);
    }
    placement = timeline.place(220);
    EXPECT_EQ(placement.silence, 50U);
    EXPECT_EQ(placement.drop, 0U);
}

} // namespace vornic
