#include "app/session/level_watch.h"
#include "app/session/session_fakes.h"
#include "support/wait_until.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace vornic {
namespace {

using test::waitUntil;

/// A microphone that is listened to, and the monitor of an output.
class LevelWatchTest : public ::testing::Test
{
protected:
    LevelWatchTest()
    {
        control.names = QStringList { "Microphone", "Monitor of Speakers" };
        control.monitors = { 12 };
        control.onStart = [this] { ++opened; };
    }
    ~LevelWatchTest() override { watch.close(); }

    bool listenTo(const QString &name)
    {
        const int before = opened;
        watch.listenTo(name);
        return waitUntil([&] { return opened > before; });
    }
    /// A second of one value.
    void deliver(std::int16_t value)
    {
        const std::vector<std::int16_t> samples(96'000, value);
        control.recorder->deliver(samples.data(), 192'000);
    }

    FakeAudioControl control;
    std::atomic<int> opened = 0;
    LevelWatch watch { &control };
    QSignalSpy heard { &watch, &LevelWatch::heard };
    QSignalSpy silent { &watch, &LevelWatch::nothingHeard };
};

TEST_F(LevelWatchTest, TheInputIsOpenOnlyWhileSomebodyListens)
{
    EXPECT_TRUE(control.recorders.isEmpty());
    ASSERT_TRUE(listenTo("Microphone"));
    EXPECT_EQ(control.recorder->deviceID, 11U);
    std::atomic<bool> isGone = false;
    control.recorder->onDestroyed = [&] { isGone = true; };
    watch.listenTo("Microphone"); // as before
    watch.listenTo({});
    EXPECT_TRUE(waitUntil([&] { return isGone.load(); }));
    EXPECT_EQ(opened, 1);
    ASSERT_TRUE(listenTo("Monitor of Speakers"));
    EXPECT_EQ(control.recorder->deviceID, 12U);
    isGone = false;
    control.recorder->onDestroyed = [&] { isGone = true; };
    watch.close();
    EXPECT_TRUE(isGone) << "before the call returns";
}

TEST_F(LevelWatchTest, PeaksAreTold)
{
    ASSERT_TRUE(listenTo("Microphone"));
    deliver(-16384);
    ASSERT_TRUE(waitUntil([this] { return heard.size() == 1; }));
    EXPECT_NEAR(heard[0][0].toDouble(), 0.5, 0.001);
}

TEST_F(LevelWatchTest, AMicrophoneThatGivesNothingIsToldOfOnce)
{
    ASSERT_TRUE(listenTo("Microphone"));
    for (int second = 0; second < 9; ++second)
        deliver(0);
    deliver(1);
    for (int second = 0; second < 9; ++second)
        deliver(0);
    ASSERT_TRUE(waitUntil([this] { return heard.size() == 19; }));
    EXPECT_TRUE(silent.isEmpty()) << "never ten seconds at once";
    for (int second = 0; second < 25; ++second)
        deliver(0);
    ASSERT_TRUE(waitUntil([this] { return heard.size() == 44 && !silent.isEmpty(); }));
    EXPECT_EQ(silent[0][0].toString(), "Microphone");
    watch.listenTo({});
    ASSERT_TRUE(listenTo("Microphone"));
    for (int second = 0; second < 15; ++second)
        deliver(0);
    ASSERT_TRUE(waitUntil([this] { return heard.size() == 59; }));
    EXPECT_EQ(silent.size(), 1) << "and not each time that the window is shown";
}

TEST_F(LevelWatchTest, AMonitorMayBeSilent)
{
    ASSERT_TRUE(listenTo("Monitor of Speakers"));
    for (int second = 0; second < 15; ++second)
        deliver(0);
    ASSERT_TRUE(waitUntil([this] { return heard.size() == 15; }));
    EXPECT_TRUE(silent.isEmpty());
}

TEST_F(LevelWatchTest, WhatIsNotThereIsNotOpened)
{
    watch.listenTo("Kitchen");
    watch.close();
    EXPECT_EQ(opened, 0);
}

} // namespace
} // namespace vornic
