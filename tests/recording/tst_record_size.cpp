#include "recording_fixture.h"
#include "support/built_program.h"

#include <QFileInfo>

namespace vornic {

using testing::probe;
using testing::streamOf;

/// Movies that are not to grow larger than a size.
class RecordSizeTest : public RecordingTest
{
protected:
    void SetUp() override { startServer({ 640, 360 }); }

    double movieSeconds() const
    {
        return streamOf(probe(movie()), "video")["duration"].toString().toDouble();
    }
};

TEST_F(RecordSizeTest, ScrollingTextEndsBeforeItIsTooMuch)
{
    const auto scene
        = start(test::builtProgram("tests/support/vornic_show_scene"), { "scroll", "--fps", "30" });
    scene->waitForReadyRead(20'000);
    const Result result = record({ "--max-size", "1M", "--duration", "120" });
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_TRUE(result.error.contains("as large as it may become")) << result.error.toStdString();
    EXPECT_LE(QFileInfo(movie()).size(), 1'000'000);
    EXPECT_GT(QFileInfo(movie()).size(), 500'000);
    EXPECT_GT(movieSeconds(), 2);
    EXPECT_LT(movieSeconds(), 60);
}

TEST_F(RecordSizeTest, AStillScreenIsAsLongAsItWasToBe)
{
    const Result result = record({ "--max-size=1M", "--duration", "2" });
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_FALSE(result.error.contains("large")) << result.error.toStdString();
    EXPECT_GT(movieSeconds(), 1) << "the first picture may be late";
    EXPECT_LT(movieSeconds(), 2.1);
}

} // namespace vornic
