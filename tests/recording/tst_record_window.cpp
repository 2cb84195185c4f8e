#include "record_window_fixture.h"

namespace vornic {
namespace {

using testing::probe;
using testing::streamOf;

TEST_F(RecordWindowTest, RecordStopAndMovie)
{
    painter->drawOnRoot(test::knownPicture({ 1280, 720 }), { 0, 0 });
    const QString stopBar = startRecording();
    ASSERT_FALSE(stopBar.isEmpty());
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    EXPECT_FALSE(QFile::exists(movie("window.mp4")));
    // A click on the stop bar, as with a mouse.
    xdotool({ "mousemove", "--window", stopBar, "20", "20", "click", "1" });
    ASSERT_TRUE(waitForFile(movie("window.mp4")));
    EXPECT_FALSE(waitForWindow("^Vornic$").isEmpty());
    const QJsonObject video = streamOf(probe(movie("window.mp4")), "video");
    EXPECT_EQ(video["width"].toInt(), 1280);
    EXPECT_EQ(video["height"].toInt(), 720);
    EXPECT_GT(secondsOf(movie("window.mp4")), 1.0);

    // The program is idle again: closing its window ends it.
    xdotool({ "windowclose", waitForWindow("^Vornic$") });
    program->terminate();
    EXPECT_EQ(finish(*program).status, 0);
}

TEST_F(RecordWindowTest, SigtermWhileRecordingLeavesACompleteMovie)
{
    ASSERT_FALSE(startRecording().isEmpty());
    std::this_thread::sleep_for(std::chrono::milliseconds(1000));
    program->terminate();
    EXPECT_EQ(finish(*program).status, 0);
    EXPECT_GT(secondsOf(movie("window.mp4")), 0.7);
}

} // namespace
} // namespace vornic
