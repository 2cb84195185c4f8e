#include "record_window_fixture.h"

namespace vornic {
namespace {

using testing::probe;
using testing::streamOf;

TEST_F(RecordWindowTest, RecordStopAndMovie)
{
    painter->drawOnRoot(test::knownPicture({ 1280, 720 }), { 0, 0 });
    ASSERT_FALSE(startRecording().isEmpty());
    letPass(std::chrono::milliseconds(1200));
    EXPECT_FALSE(QFile::exists(movie("window.mp4")));
    clickStopBar();
    ASSERT_TRUE(waitForFile(movie("window.mp4")));
    EXPECT_FALSE(waitForWindow("^Vornic$").isEmpty());
    const QJsonObject video = streamOf(probe(movie("window.mp4")), "video");
    EXPECT_EQ(video["width"].toInt(), 1280);
    EXPECT_EQ(video["height"].toInt(), 720);
    EXPECT_GT(secondsOf(movie("window.mp4")), 1.0);

    endProgram(); // it is idle again
}

TEST_F(RecordWindowTest, SigtermWhileRecordingLeavesACompleteMovieAndTheOptions)
{
    ASSERT_FALSE(startRecording().isEmpty());
    letPass(std::chrono::milliseconds(1000));
    program->terminate();
    EXPECT_EQ(finish(*program).status, 0);
    QFile settings(folder.filePath("config/kavlor/Vornic.conf"));
    ASSERT_TRUE(settings.open(QIODevice::ReadOnly));
    EXPECT_TRUE(settings.readAll().contains("com.kavlor.options="));
    EXPECT_GT(secondsOf(movie("window.mp4")), 0.7);
}

/// Waits until the movie is being written, beside its place under another name.
bool isBeingWritten(const QString &folder)
{
    return test::waitUntil(
        [&] { return !QDir(folder).entryList({ "*.part" }, QDir::Files | QDir::Hidden).isEmpty(); });
}

TEST_F(RecordWindowTest, QuitWhileRecordingAsksAndLeavesACompleteMovie)
{
    const QString window = waitForWindow("^Vornic$");
    ASSERT_FALSE(startRecording().isEmpty());
    letPass(std::chrono::milliseconds(1000));
    // "No" is what Enter and Escape mean.
    for (const char *answer : { "Escape", "Return" }) {
        key(closeUntilAsked(window), answer);
        EXPECT_FALSE(program->waitForFinished(300));
        EXPECT_FALSE(QFile::exists(movie("window.mp4")));
    }
    const QString question = closeUntilAsked(window);
    ASSERT_FALSE(question.isEmpty());
    key(question, "Tab");
    key(question, "space");
    EXPECT_EQ(finish(*program).status, 0);
    EXPECT_GT(secondsOf(movie("window.mp4")), 0.9);
}

TEST_F(RecordWindowTest, SigtermWhileTheMovieIsWrittenLeavesItComplete)
{
    const std::unique_ptr<QProcess> scene = startScene();
    ASSERT_FALSE(startRecording().isEmpty());
    letPass(std::chrono::milliseconds(2500));
    clickStopBar();
    ASSERT_TRUE(isBeingWritten(folder.path()));
    program->terminate();
    EXPECT_FALSE(QFile::exists(movie("window.mp4")));
    EXPECT_EQ(finish(*program).status, 0);
    EXPECT_GT(secondsOf(movie("window.mp4")), 2.0);
    EXPECT_TRUE(QDir(folder.path()).entryList({ "*.part" }, QDir::Files | QDir::Hidden).isEmpty());
}

TEST_F(RecordWindowTest, TheWindowDoesNotCloseWhileTheMovieIsWritten)
{
    const std::unique_ptr<QProcess> scene = startScene();
    ASSERT_FALSE(startRecording().isEmpty());
    letPass(std::chrono::milliseconds(2500));
    clickStopBar();
    ASSERT_FALSE(waitForWindow("% – Vornic$").isEmpty());
    const QString sheet = waitForWindow("^Vornic$");
    key(sheet, "alt+F4");
    bool stays = true;
    EXPECT_TRUE(test::waitUntil([&] {
        const QStringList seen = xdotool({ "search", "--onlyvisible", "--name", "^Vornic$" }).split('\n');
        // Asked in this order: the sheet may go as soon as the movie is there.
        const bool isWritten = QFile::exists(movie("window.mp4"));
        stays = stays && (isWritten || seen.contains(sheet));
        return isWritten;
    }));
    EXPECT_TRUE(stays);
    EXPECT_GT(secondsOf(movie("window.mp4")), 2.0);
    endProgram();
}

} // namespace
} // namespace vornic
