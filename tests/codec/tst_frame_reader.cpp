#include "codec/PKVideoFrame2.h"
#include "codec/frame_reader.h"

#include <QImage>

#include <gtest/gtest.h>

#include <atomic>
#include <semaphore>
#include <stdexcept>
#include <stop_token>
#include <thread>

namespace vornic::testing {
namespace {

std::shared_ptr<const PKVideoFrame2> frameAt(int time)
{
    auto frame = std::make_shared<PKVideoFrame2>(QImage(1, 1, QImage::Format_RGB32));
    frame->setTimeStamp(time);
    return frame;
}

TEST(FrameReader, givesEveryFrameInOrderAndThenTheEnd)
{
    int made = 0;
    FrameReader reader(
        [&made]() -> std::shared_ptr<const PKVideoFrame2> { return made < 100 ? frameAt(made++) : nullptr; });
    for (int i = 0; i < 100; ++i) {
        const auto frame = reader.next();
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame->timeStamp(), i);
    }
    EXPECT_EQ(reader.next(), nullptr);
    EXPECT_EQ(reader.next(), nullptr);
}

TEST(FrameReader, readsAheadButNotWithoutBound)
{
    std::atomic<int> made = 0;
    std::counting_semaphore<> madeOne(0);
    {
        FrameReader reader([&] {
            madeOne.release();
            return frameAt(made++);
        });
        for (int i = 0; i < 3; ++i)
            madeOne.acquire(); // without anybody asking
        for (int i = 0; i < 20; ++i)
            EXPECT_EQ(reader.next()->timeStamp(), i);
        EXPECT_LE(made, 24);
    }
    EXPECT_LE(made, 24); // ended with a full queue, and stopped
}

TEST(FrameReader, readsFurtherWherePicturesStay)
{
    std::atomic<int> made = 0;
    std::counting_semaphore<> madeOne(0);
    const auto still = frameAt(0);
    FrameReader reader([&] {
        madeOne.release();
        const auto frame = still->sharingPixels();
        frame->setTimeStamp(made++);
        return frame;
    });
    for (int i = 0; i < 32; ++i)
        madeOne.acquire(); // without anybody asking
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(reader.next()->timeStamp(), i);
    EXPECT_LE(made, 133);
}

TEST(FrameReader, tellsWhatTheSourceThrewAfterTheFramesBefore)
{
    int made = 0;
    FrameReader reader([&made]() -> std::shared_ptr<const PKVideoFrame2> {
        if (made == 2)
            throw std::runtime_error("broken");
        return frameAt(made++);
    });
    EXPECT_TRUE(reader.next());
    EXPECT_TRUE(reader.next());
    EXPECT_THROW(static_cast<void>(reader.next()), std::runtime_error);
    EXPECT_EQ(reader.next(), nullptr);
}

TEST(FrameReader, aStopEndsTheWaitForASourceThatIsBusy)
{
    std::atomic_flag isBusy;
    std::atomic_flag mayReturn; // for good: the source is asked until the queue is full
    std::stop_source stop;
    FrameReader reader(
        [&] {
            isBusy.test_and_set();
            isBusy.notify_all();
            mayReturn.wait(false);
            return frameAt(0);
        },
        stop.get_token());
    std::jthread stopper([&] {
        isBusy.wait(false);
        stop.request_stop();
    });
    EXPECT_EQ(reader.next(), nullptr); // before the source has returned
    mayReturn.test_and_set();
    mayReturn.notify_all();
}

TEST(FrameReader, aStopLeavesOutTheFramesThatWereReadAhead)
{
    std::counting_semaphore<> madeOne(0);
    std::stop_source stop;
    FrameReader reader(
        [&madeOne] {
            madeOne.release();
            return frameAt(0);
        },
        stop.get_token());
    madeOne.acquire();
    madeOne.acquire(); // the first one is in the queue
    stop.request_stop();
    EXPECT_EQ(reader.next(), nullptr);
}

} // namespace
} // namespace vornic::testing
