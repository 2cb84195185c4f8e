#include "program_fixture.h"
#include "sound_analysis.h"

#include <algorithm>
#include <cmath>

namespace vornic {
namespace {

using testing::decodedSound;

/// The built program on the fake display and the fake sound backend: neither an X server nor a sound server is
/// there, and the test needs none.
class RecordFakesTest : public ProgramTest
{
protected:
    QProcessEnvironment environment() const override
    {
        QProcessEnvironment variables = ProgramTest::environment();
        variables.remove("DISPLAY");
        variables.remove("WAYLAND_DISPLAY");
        variables.insert("PULSE_SERVER", "unix:/nonexistent");
        variables.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
        variables.insert("VORNIC_DISPLAY", "fake");
        variables.insert("VORNIC_AUDIO", audioBackend);
        return variables;
    }

    QString audioBackend = "fake";
};

TEST_F(RecordFakesTest, TheMovieHoldsTheDisplayAndTheSoundToTheSample)
{
    const Result result = record({ "--audio", "--duration", "2" });
    ASSERT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_EQ(sizeOf(movie()), QSize(1920, 1080));
    EXPECT_NEAR(secondsOf(movie(), "audio"), 2, 0.03);
    EXPECT_NEAR(secondsOf(movie()), 2, 0.3)
        << "a slow machine grabs its last picture some time before the end";

    const std::vector<std::int16_t> sound = decodedSound(movie());
    const std::vector<double> clicks = beepsIn(sound);
    ASSERT_GE(clicks.size(), 2U);
    for (std::size_t second = 0; second < clicks.size(); ++second)
        EXPECT_NEAR(clicks[second], static_cast<double>(second) + 0.5, 0.002);

    // The encoder's first and last blocks fade, and its blocks spread a click over some 50 ms.
    const std::vector<HeardTone> tones = tonesIn(sound, 440);
    ASSERT_GT(tones.size(), 150U);
    for (std::size_t window = 8; window + 8 < tones.size(); ++window) {
        const double time = static_cast<double>(window) / 100;
        if (std::ranges::any_of(clicks, [&](double click) { return std::abs(click - time) < 0.06; }))
            continue;
        EXPECT_NEAR(tones[window].amplitude, 0.0625, 0.006) << time;
        // The phase stays only if the pitch is exact, and is 0 only if each sample stands at its time.
        EXPECT_NEAR(tones[window].phase, 0, 0.15) << time;
    }
}

TEST_F(RecordFakesTest, TheNamedDeviceIsRecorded)
{
    const Result devices = vornic({ "devices" });
    EXPECT_EQ(devices.status, 0);
    EXPECT_EQ(devices.output.toStdString(), "Fake microphone\nMonitor of fake output\n");
    const Result result
        = record({ "--audio=Monitor of fake output", "--region", "0,0,160,120", "--duration", "0.5" });
    ASSERT_EQ(result.status, 0) << result.error.toStdString();
    const std::vector<std::int16_t> sound = decodedSound(movie());
    EXPECT_GT(sound.size(), 2 * 48'000 / 3U);
    EXPECT_EQ(std::ranges::count(sound, 0), static_cast<std::ptrdiff_t>(sound.size()));
}

TEST_F(RecordFakesTest, AWrongBackendIsOneSentenceWithTheIdsThatThereAre)
{
    audioBackend = "loud";
    const std::string sentence
        = "vornic: VORNIC_AUDIO names the sound backend \"loud\", but there are only: pulse, fake, none.\n";
    const Result devices = vornic({ "devices" });
    EXPECT_EQ(devices.status, 1);
    EXPECT_EQ(devices.error.toStdString(), sentence);
    const Result recording = record({ "--audio", "--duration", "1" });
    EXPECT_EQ(recording.status, 1);
    EXPECT_EQ(recording.error.toStdString(), sentence);
    EXPECT_FALSE(QFile::exists(movie()));
}

} // namespace
} // namespace vornic
