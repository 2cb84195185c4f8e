#include "base/PKTimebase.h"
#include "codec/movie_writer.h"
#include "movie_test_support.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <vector>

namespace vornic::testing {
namespace {

/// A source that knows that what comes later takes longer.
class WeighingSource final : public ListSource
{
public:
    [[nodiscard]] std::optional<double> shareOfWork(std::int64_t ticks) override
    {
        if (!m_knows)
            return std::nullopt;
        const double share = static_cast<double>(ticks) / static_cast<double>(length);
        return share * share;
    }

    bool m_knows = true;
};

std::vector<double> percentsOf(PKMuxerTaskDataSource &source)
{
    QTemporaryDir folder;
    std::vector<double> percents;
    static_cast<void>(writeMovie(videoContext(folder.filePath(QStringLiteral("a.mp4")), { 64, 48 }),
                                 source,
                                 [&](double percent) { percents.push_back(percent); }));
    return percents;
}

TEST(MovieProgress, isWhatTheSourceSaysOfTheWork)
{
    WeighingSource source;
    source.addGreys({ 64, 48 }, 10);
    const std::vector<double> percents = percentsOf(source);
    ASSERT_EQ(percents.size(), 10U);
    for (int i = 0; i < 10; ++i)
        EXPECT_NEAR(percents[static_cast<std::size_t>(i)], (i + 1) * (i + 1), 1e-6);
}

TEST(MovieProgress, isTheShareOfTheLengthWhereTheSourceDoesNotKnow)
{
    WeighingSource source;
    source.m_knows = false;
    source.addGreys({ 64, 48 }, 10);
    const std::vector<double> percents = percentsOf(source);
    ASSERT_EQ(percents.size(), 10U);
    for (int i = 0; i < 10; ++i)
        EXPECT_NEAR(percents[static_cast<std::size_t>(i)], (i + 1) * 10, 1e-6);
}

TEST(MovieProgress, neverGoesBeyondTheEnd)
{
    WeighingSource source;
    source.addGreys({ 64, 48 }, 10);
    source.length /= 2;
    for (const double percent : percentsOf(source))
        EXPECT_LE(percent, 100);
}

} // namespace
} // namespace vornic::testing
