#include "base/log.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace vornic {
namespace {

TEST(LogTest, LinesGoToStandardErrorAndRepeatsAreCounted)
{
    ::testing::internal::CaptureStderr();
    logMessage("one");
    for (int i = 0; i < 50; ++i)
        logMessage("again");
    logMessage("two");
    logMessage("one");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "vornic: one\nvornic: again\nvornic: (49 more times)\nvornic: two\nvornic: one\n");
}

TEST(LogTest, LinesAreWrittenAsUtf8)
{
    ::testing::internal::CaptureStderr();
    logMessage(QStringLiteral("Größe"));
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "vornic: Größe\n");
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
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

} // namespace
} // namespace vornic
