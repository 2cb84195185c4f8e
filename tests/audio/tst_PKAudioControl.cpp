#include "audio/PKAudioControl.h"
#include "audio/PKAudioControlDelegate.h"
#include "base/clock.h"
#include "base/main_queue.h"
#include "sound_server_test.h"

#include <QThread>

namespace vornic {

using test::SoundServer;
using test::waitUntil;

class AudioControlTest : public SoundServerTest, public PKAudioControlDelegate
{
protected:
    void audioControlInputDeviceChanged(AudioControl &changed) override
    {
        EXPECT_EQ(QThread::currentThread(), application.thread());
        names = withoutStandIn(changed.inputDevicesName());
        changed.setDelegate(this);
        ++changes;
    }
    /// Without any output one of the servers has a stand-in for it.
    static QStringList withoutStandIn(QStringList all)
    {
        all.removeAll("Monitor of Dummy Output");
        return all;
    }
    void open()
    {
        control = std::make_unique<PKAudioControl>();
        names = withoutStandIn(control->inputDevicesName());
        control->setDelegate(this);
    }
    /// A generous bound for a loaded machine; the promise is a second.
    bool showsSoon(const QStringList &wanted)
    {
        return waitUntil([&] { return names == wanted; });
    }

    std::unique_ptr<PKAudioControl> control;
    QStringList names;
    int changes = 0;
};

INSTANTIATE_TEST_SUITE_P(Servers,
                         AudioControlTest,
                         ::testing::Values(SoundServer::Kind::PulseAudio, SoundServer::Kind::PipeWire),
                         nameOfServer);

TEST_P(AudioControlTest, InputsAreThereFromTheFirstQuestionOn)
{
    EXPECT_FALSE(server->addOutput("speakers", "Speakers").isEmpty());
    EXPECT_FALSE(server->addMicrophone("mic", "Desk microphone").isEmpty());
    EXPECT_FALSE(server->addMicrophone("mic2", "Desk microphone").isEmpty());
    ASSERT_TRUE(server->setDefault("source", "speakers.monitor"));
    open();
    EXPECT_EQ(names, QStringList({ "Monitor of Speakers", "Desk microphone", "Desk microphone (2)" }));
    EXPECT_NE(control->deviceIDFromName("Desk microphone"), control->deviceIDFromName("Desk microphone (2)"));
    EXPECT_EQ(control->deviceIDFromName("Kitchen"), 0U);
    // That nothing comes is what is tested: there is nothing to wait for but the time to pass.
    waitUntil([this] { return changes != 0; }, std::chrono::milliseconds(300));
    EXPECT_EQ(changes, 0) << "what was read is no change";
}

TEST_P(AudioControlTest, DevicesThatComeAndGoAreTold)
{
    open();
    EXPECT_TRUE(names.isEmpty());
    const QString microphone = server->addMicrophone("mic", "Desk microphone");
    EXPECT_TRUE(showsSoon({ "Desk microphone" }));
    const std::uint32_t id = control->deviceIDFromName("Desk microphone");
    const QString speakers = server->addOutput("speakers", "Speakers");
    EXPECT_FALSE(speakers.isEmpty());
    EXPECT_TRUE(waitUntil([this] { return names.contains("Monitor of Speakers") && names.size() == 2; }));
    server->remove(microphone);
    EXPECT_TRUE(showsSoon({ "Monitor of Speakers" }));
    EXPECT_EQ(control->deviceIDFromName("Desk microphone"), 0U);
    EXPECT_FALSE(server->addMicrophone("mic", "Desk microphone").isEmpty());
    EXPECT_TRUE(waitUntil([this] { return names.contains("Desk microphone"); }));
    EXPECT_EQ(control->deviceIDFromName("Desk microphone"), id);
}

TEST_P(AudioControlTest, ARenamedDeviceIsTold)
{
    if (GetParam() == SoundServer::Kind::PipeWire)
        GTEST_SKIP() << "this server gives a device no other name while it is there";
    EXPECT_FALSE(server->addMicrophone("mic", "Desk microphone").isEmpty());
    open();
    const std::uint32_t id = control->deviceIDFromName("Desk microphone");
    server->rename("mic", "Headset");
    EXPECT_TRUE(showsSoon({ "Headset" }));
    EXPECT_EQ(control->deviceIDFromName("Headset"), id);
}

TEST_P(AudioControlTest, AnotherDefaultBecomesTheFirst)
{
    // Of PipeWire's servers (0.3.65) about one in two hundred, started under load, tells no connection of
    // another default, though a connection made afterwards is answered with it: then another server is tried.
    const int servers = GetParam() == SoundServer::Kind::PipeWire ? 3 : 1;
    bool isShown = false;
    for (int count = 1; count <= servers && !isShown; ++count) {
        ASSERT_TRUE(count == 1 || server->restart());
        EXPECT_FALSE(server->addMicrophone("mic", "Desk microphone").isEmpty());
        EXPECT_FALSE(server->addMicrophone("headset", "Headset").isEmpty());
        ASSERT_TRUE(server->setDefault("source", "mic"));
        open();
        EXPECT_EQ(names, QStringList({ "Desk microphone", "Headset" }));
        ASSERT_TRUE(server->setDefault("source", "headset"));
        isShown = showsSoon({ "Headset", "Desk microphone" });
    }
    EXPECT_TRUE(isShown);
}

TEST_P(AudioControlTest, AServerThatDiesAndComesBackIsFoundAgain)
{
    EXPECT_FALSE(server->addMicrophone("mic", "Desk microphone").isEmpty());
    open();
    const std::uint32_t id = control->deviceIDFromName("Desk microphone");
    server->kill();
    EXPECT_TRUE(showsSoon({}));
    ASSERT_TRUE(server->restart());
    EXPECT_FALSE(server->addMicrophone("mic", "Desk microphone").isEmpty());
    EXPECT_TRUE(showsSoon({ "Desk microphone" }));
    EXPECT_EQ(control->deviceIDFromName("Desk microphone"), id);
}

TEST_P(AudioControlTest, WithoutAServerThereAreNoDevicesAndNoWait)
{
    server->kill();
    const double before = absoluteTimeSeconds();
    open();
    EXPECT_TRUE(names.isEmpty());
    EXPECT_LT(absoluteTimeSeconds() - before, 10) << "a hang";
}

TEST_P(AudioControlTest, AServerThatHangsHoldsUpAWhileAndNoLonger)
{
    EXPECT_FALSE(server->addMicrophone("mic", "Desk microphone").isEmpty());
    server->suspend();
    open();
    EXPECT_TRUE(names.isEmpty());
    server->resume();
    EXPECT_TRUE(showsSoon({ "Desk microphone" }));
}

TEST_P(AudioControlTest, AControlMayEndAtAnyMoment)
{
    for (int i = 0; i < 30; ++i) {
        open();
        EXPECT_FALSE(server->addMicrophone("mic" + QString::number(i), "Microphone").isEmpty());
        control.reset();
    }
    // What a control posted before its end has run when this has.
    bool hasRun = false;
    main_queue::async([&hasRun] { hasRun = true; });
    EXPECT_TRUE(waitUntil([&hasRun] { return hasRun; }));
    EXPECT_EQ(changes, 0);
}

} // namespace vornic
