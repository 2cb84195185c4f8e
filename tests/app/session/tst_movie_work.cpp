#include "app/session/movie_work.h"
#include "base/PKTimebase.h"

#include <gtest/gtest.h>

namespace vornic {
namespace {

constexpr std::uint64_t mark = 300; ///< bytes of a record whose picture stays
constexpr std::uint64_t fewRows = 4000;
constexpr std::uint64_t page = 900'000;

/// A recording with so many records of some bytes one after the other, thirty a second.
class MovieWorkTest : public ::testing::Test
{
protected:
    void add(int count, std::uint64_t bytes)
    {
        for (int i = 0; i < count; ++i)
            m_records.emplace_back(static_cast<std::int64_t>(m_records.size()) * PKTimebase / 30, bytes);
    }
    double shareBefore(double seconds) const
    {
        return MovieWork(m_records)
            .shareBefore(static_cast<std::int64_t>(seconds * static_cast<double>(PKTimebase)))
            .value_or(-1);
    }

    std::vector<std::pair<std::int64_t, std::uint64_t>> m_records;
};

TEST_F(MovieWorkTest, ofNothingThereIsNoShare)
{
    EXPECT_FALSE(MovieWork().shareBefore(0));
    EXPECT_FALSE(MovieWork(m_records).shareBefore(5));
}

TEST_F(MovieWorkTest, whatIsEvenGrowsWithTime)
{
    add(300, fewRows);
    EXPECT_EQ(shareBefore(-1), 0);
    EXPECT_EQ(shareBefore(0), 0);
    EXPECT_NEAR(shareBefore(2.5), 0.25, 1e-9);
    EXPECT_NEAR(shareBefore(9), 0.9, 1e-9);
    EXPECT_EQ(shareBefore(10), 1);
    EXPECT_EQ(shareBefore(1000), 1);
}

TEST_F(MovieWorkTest, aStillHalfTakesLittleOfTheTime)
{
    add(300, mark);
    add(300, page);
    EXPECT_NEAR(shareBefore(10), 0.07, 0.03);
    EXPECT_NEAR(shareBefore(15), 0.535, 0.02);
}

TEST_F(MovieWorkTest, aPageTakesLongerThanAFewRowsButNotByAllItsBytes)
{
    add(300, fewRows);
    add(300, page);
    const double few = shareBefore(10);
    EXPECT_GT(few, 0.2);
    EXPECT_LT(few, 0.33);
}

TEST_F(MovieWorkTest, recordsOfOneTimeAreDoneTogether)
{
    m_records = { { 0, fewRows }, { 0, fewRows }, { 3000, fewRows } };
    EXPECT_EQ(MovieWork(m_records).shareBefore(0), 0.0);
    EXPECT_NEAR(MovieWork(m_records).shareBefore(3000).value_or(-1), 2.0 / 3, 1e-9);
}

} // namespace
} // namespace vornic
