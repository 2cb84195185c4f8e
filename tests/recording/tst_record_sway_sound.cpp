#include "record_sway_fixture.h"
#include "sound_analysis.h"
#include "support/built_program.h"
#include "support/sound_server.h"

namespace vornic {
namespace {

using test::SoundServer;

/// As on X11, a machine that is busy with other things has three attempts; one that is too busy for pictures shows nothing.
TEST_F(RecordSwayTest, FlashesAndBeepsAreInStep)
{
    startDesktop({ .size = { 640, 480 } });
    const auto sound = SoundServer::start(SoundServer::Kind::PipeWire);
    ASSERT_TRUE(sound);
    ASSERT_FALSE(sound->addOutput("speakers", "Speakers").isEmpty());
    // More than are recorded, however long the recordings take to begin.
    const auto player
        = start(test::builtProgram("tests/support/vornic_play_sound"), { "flashes", "200", "0.7" });
    ASSERT_TRUE(player->waitForReadyRead(20'000)) << player->readAllStandardError().toStdString();
    constexpr int attempts = 3;
    Distances found;
    for (int attempt = 0; attempt < attempts && (attempt == 0 || !found.areSmall()); ++attempt) {
        const Result result
            = record({ "--region", "0,0,160,120", "--audio", "--duration", "10", "--overwrite" });
        ASSERT_EQ(result.status, 0) << result.error.toStdString();
        found = distancesIn(movie());
    }
    constexpr int leastRate = 20; // of a second; few flashes can be told from it
    if (!found.areSmall() && frameCount() < leastRate * secondsOf(movie()))
        GTEST_SKIP() << "this machine is too busy to take twenty pictures a second";
    EXPECT_TRUE(found.areSmall());
    EXPECT_NEAR(secondsOf(movie(), "audio"), secondsOf(movie()), 0.1);
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return vornic::isSwayInstalled()
            && vornic::test::SoundServer::isInstalled(vornic::test::SoundServer::Kind::PipeWire)
        ? RUN_ALL_TESTS()
        : 77;
}
