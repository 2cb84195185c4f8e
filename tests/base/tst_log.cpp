#include "base/error_stream.h"
#include "base/log.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>

namespace vornic {
namespace {

std::string capturedStderr()
{
    EXPECT_TRUE(standardError().flush(std::chrono::seconds(20)));
    return ::testing::internal::GetCapturedStderr();
}

TEST(LogTest, LinesGoToStandardErrorAndRepeatsAreCounted)
{
    ::testing::internal::CaptureStderr();
    logMessage("one");
    for (int i = 0; i < 50; ++i)
        logMessage("again");
    logMessage("two");
    logMessage("one");
    EXPECT_EQ(capturedStderr(),
              "vornic: one\nvornic: again\nvornic: (49 more times)\nvornic: two\nvornic: one\n");
}

TEST(LogTest, RepeatsAreCountedWhenTheProcessEndsToo)
{
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            for (int i = 0; i < 3; ++i)
                logMessage("again");
            std::exit(0);
        },
        ::testing::ExitedWithCode(0),
        "vornic: again\nvornic: \\(2 more times\\)\n");
}

TEST(LogTest, LinesAreWrittenAsUtf8)
{
    ::testing::internal::CaptureStderr();
    logMessage(QStringLiteral("Größe"));
    EXPECT_EQ(capturedStderr(), "vornic: Größe\n");
}

TEST(LogTest, ASinkGetsEveryLineInsteadOfStandardError)
{
    QStringList lines;
    setLogSink([&](const QString &line) { lines += line; });
    ::testing::internal::CaptureStderr();
    logMessage("again");
    logMessage("again");
    setLogSink({});
    EXPECT_EQ(lines, QStringList({ "again", "again" }));
    EXPECT_EQ(capturedStderr(), "");
}

} // namespace
} // namespace vornic
