#include "app/session/disk_forecast.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

namespace vornic {
namespace {

using Limit = DiskForecast::Limit;

constexpr double megabyte = 1e6;
constexpr std::uint64_t keptFree = 1'000'000'000;
constexpr double never = std::numeric_limits<double>::infinity();

/// A recording that fills two volumes, or one, second by second; what it takes is up to the test.
class Disk
{
public:
    double spoolFree = 20e9;
    double movieFree = 500e9;
    bool isOneVolume = false;
    double movieRate = 0.5 * megabyte;                                      ///< bytes a second
    std::function<double(double second)> rate = [](double) { return 0.0; }; ///< bytes a second
    double othersRate = 0;        ///< bytes a second that others take of the spool's volume
    double othersOfMovieRate = 0; ///< and of the movie's

    DiskForecast forecast { keptFree };
    double now = 1000;
    double recorded = 0;
    double spooled = 0;

    Disk() { look(); }
    void pass(double seconds)
    {
        for (double second = 0; second < seconds; ++second) {
            const double grown = rate(recorded);
            spooled += grown;
            spoolFree -= grown + othersRate;
            movieFree -= othersOfMovieRate;
            ++now;
            ++recorded;
            look();
        }
    }
    void look()
    {
        const auto bytes = [](double free) { return static_cast<std::uint64_t>(std::max(0.0, free)); };
        forecast.add({ .seconds = now,
                       .spooledBytes = bytes(spooled),
                       .movieSeconds = recorded,
                       .movieBytesPerSecond = movieRate,
                       .space = { .spoolFree = bytes(spoolFree),
                                  .movieFree = bytes(isOneVolume ? spoolFree : movieFree),
                                  .isOneVolume = isOneVolume } });
    }
    [[nodiscard]] double seconds() const
    {
        return forecast.room().value_or(DiskForecast::Room { -1 }).seconds;
    }
    [[nodiscard]] Limit limit() const { return forecast.room().value_or(DiskForecast::Room {}).limit; }

    /// Goes on until the recording ends, or its movie would not fit: how long that takes in truth.
    [[nodiscard]] static double truth(Disk disk)
    {
        const double begin = disk.now;
        while (disk.goesOn())
            disk.pass(1);
        return disk.now - begin;
    }

private:
    [[nodiscard]] bool goesOn() const
    {
        const double movie = std::min(spooled, movieRate * recorded);
        if (isOneVolume)
            return spoolFree >= static_cast<double>(keptFree) + movie;
        return spoolFree >= static_cast<double>(keptFree) && movieFree >= movie;
    }
};

void expectTruth(const Disk &disk)
{
    const double truth = Disk::truth(disk);
    EXPECT_NEAR(disk.seconds(), truth, truth / 10);
}

TEST(DiskForecastTest, InTheFirstSecondsNothingIsKnown)
{
    Disk disk;
    disk.rate = [](double) { return 20 * megabyte; };
    EXPECT_FALSE(disk.forecast.room());
    disk.pass(4);
    EXPECT_FALSE(disk.forecast.room());
    disk.pass(1);
    EXPECT_TRUE(disk.forecast.room());
}

TEST(DiskForecastTest, AConstantRateIsToldWithinATenthFromTheFirstSecondsToTheEnd)
{
    for (const double rate : { 0.3 * megabyte, 5 * megabyte, 25 * megabyte }) {
        Disk disk;
        disk.spoolFree = 3e9;
        disk.rate = [rate](double) { return rate; };
        disk.pass(5);
        EXPECT_EQ(disk.limit(), Limit::Spool);
        while (disk.seconds() > 20) {
            expectTruth(disk);
            disk.pass(std::ceil(disk.seconds() / 4));
        }
        expectTruth(disk);
    }
}

TEST(DiskForecastTest, BurstsCountByTheirAverage)
{
    Disk disk;
    // A whole picture every two seconds and little between them; ten seconds out of thirty with much.
    disk.rate = [](double second) {
        const bool isBurst = std::fmod(second, 30) < 10;
        return (std::fmod(second, 2) < 1 ? 1 : 0.01) * megabyte * (isBurst ? 20 : 1);
    };
    disk.pass(60);
    for (int i = 0; i < 60; ++i) {
        expectTruth(disk);
        disk.pass(7);
    }
}

TEST(DiskForecastTest, ARateThatHasChangedIsToldAfterHalfAMinute)
{
    Disk disk;
    disk.spoolFree = 200e9;
    disk.rate = [](double) { return 25 * megabyte; };
    disk.pass(300);
    disk.rate = [](double) { return 1 * megabyte; };
    disk.pass(15);
    EXPECT_LT(disk.seconds(), Disk::truth(disk) / 2) << "half of the time that is looked at is from before";
    disk.pass(15);
    expectTruth(disk);
}

TEST(DiskForecastTest, WhereNothingIsSpooledThereIsRoomForEver)
{
    Disk disk;
    disk.rate = [](double) { return 10 * megabyte; };
    disk.pass(60);
    disk.rate = [](double) { return 0.0; };
    disk.pass(30);
    EXPECT_EQ(disk.seconds(), never);
}

TEST(DiskForecastTest, APauseWithoutSamplesIsNoRate)
{
    Disk disk;
    disk.rate = [](double) { return 10 * megabyte; };
    disk.pass(60);
    disk.now += 600; // no pass: what was spooled in it is nothing
    disk.look();
    EXPECT_GT(disk.seconds(), 60 * 60);
    disk.pass(30);
    expectTruth(disk);
}

TEST(DiskForecastTest, AnotherProgramThatFillsTheDiskCounts)
{
    Disk disk;
    disk.rate = [](double) { return 5 * megabyte; };
    disk.othersRate = 15 * megabyte;
    disk.pass(30);
    expectTruth(disk);
    disk.isOneVolume = true;
    disk.pass(30);
    expectTruth(disk);
}

TEST(DiskForecastTest, SoItDoesOnTheMoviesVolume)
{
    Disk disk;
    disk.movieFree = 30e9;
    disk.rate = [](double) { return 1 * megabyte; };
    disk.othersOfMovieRate = 10 * megabyte;
    disk.pass(30);
    EXPECT_EQ(disk.limit(), Limit::Movie);
    expectTruth(disk);
}

TEST(DiskForecastTest, OneFileThatIsCopiedIsNoRate)
{
    Disk disk;
    disk.spoolFree = 100e9;
    disk.rate = [](double) { return 5 * megabyte; };
    disk.pass(40);
    disk.othersRate = 500 * megabyte;
    disk.pass(10);
    disk.othersRate = 0;
    for (int i = 0; i < 40; ++i) {
        expectTruth(disk);
        disk.pass(1);
    }
}

TEST(DiskForecastTest, SpaceThatIsFreedCounts)
{
    Disk disk;
    disk.rate = [](double) { return 5 * megabyte; };
    disk.pass(40);
    disk.spoolFree += 40e9;
    disk.pass(1);
    expectTruth(disk);
}

TEST(DiskForecastTest, TheMoviesVolumeLimitsByTheBitRate)
{
    Disk disk;
    disk.spoolFree = 900e9;
    disk.movieFree = 1e9;
    disk.movieRate = 0.7 * megabyte;
    disk.rate = [](double) { return 25 * megabyte; };
    disk.pass(10);
    EXPECT_EQ(disk.limit(), Limit::Movie);
    expectTruth(disk);
    disk.pass(600);
    expectTruth(disk);
    EXPECT_NEAR(disk.seconds(), 1e9 / disk.movieRate - 610, 5);
}

TEST(DiskForecastTest, AMovieIsNotLargerThanWhatWasSpooled)
{
    Disk disk;
    disk.spoolFree = 900e9;
    disk.movieFree = 1e9;
    disk.movieRate = 0.7 * megabyte;
    disk.rate = [](double) { return 0.02 * megabyte; };
    disk.pass(60);
    EXPECT_EQ(disk.limit(), Limit::Movie);
    expectTruth(disk);
    EXPECT_NEAR(disk.seconds(), 1e9 / 0.02e6 - 60, 50);
}

TEST(DiskForecastTest, OnOneVolumeSpoolAndMovieCountTogether)
{
    Disk disk;
    disk.isOneVolume = true;
    disk.spoolFree = 20e9;
    disk.movieRate = 0.7 * megabyte;
    disk.rate = [](double) { return 1 * megabyte; };
    EXPECT_EQ(disk.forecast.movieBytesOnSpoolVolume(), 0U);
    disk.pass(30);
    EXPECT_EQ(disk.limit(), Limit::Spool);
    EXPECT_EQ(disk.forecast.movieBytesOnSpoolVolume(), 21'000'000U);
    expectTruth(disk);
    EXPECT_NEAR(disk.seconds(), (19e9 - 30 * 1.7e6) / 1.7e6, 20);
    disk.rate = [](double) { return 0.1 * megabyte; }; // the movie is at most as large again
    disk.pass(600);
    expectTruth(disk);
    EXPECT_EQ(disk.forecast.movieBytesOnSpoolVolume(), 90'000'000U);
    Disk large;
    large.isOneVolume = true;
    large.rate = [](double) { return 25 * megabyte; };
    large.pass(30);
    EXPECT_EQ(large.limit(), Limit::Spool);
    expectTruth(large);
    large.isOneVolume = false;
    large.pass(1);
    EXPECT_EQ(large.forecast.movieBytesOnSpoolVolume(), 0U);
}

TEST(DiskForecastTest, WhatIsFullHasNoRoom)
{
    Disk disk;
    disk.rate = [](double) { return 1 * megabyte; };
    disk.spoolFree = static_cast<double>(keptFree) - 1;
    disk.pass(6);
    EXPECT_EQ(disk.seconds(), 0);
    disk.spoolFree = 20e9;
    disk.movieFree = 0;
    disk.pass(1);
    EXPECT_EQ(disk.seconds(), 0);
    EXPECT_EQ(disk.limit(), Limit::Movie);
}

TEST(DiskForecastTest, AVolumeThatCannotBeAskedIsLeftOut)
{
    DiskForecast forecast(keptFree);
    const auto add = [&forecast](double seconds, DiskSpace space) {
        forecast.add({ .seconds = seconds,
                       .spooledBytes = static_cast<std::uint64_t>(seconds * megabyte),
                       .movieSeconds = seconds,
                       .movieBytesPerSecond = megabyte,
                       .space = space });
    };
    add(1, {});
    add(7, {});
    EXPECT_FALSE(forecast.room());
    add(8, { .spoolFree = 21'000'000'000, .movieFree = std::nullopt });
    ASSERT_TRUE(forecast.room());
    EXPECT_NEAR(forecast.room()->seconds, 20'000, 1);
    add(9, { .spoolFree = std::nullopt, .movieFree = 1'009'000'000 });
    EXPECT_EQ(forecast.room()->limit, Limit::Movie);
    EXPECT_NEAR(forecast.room()->seconds, 1000, 1);
    // Nor does it disturb what is measured of others.
    for (int second = 10; second < 60; ++second)
        add(second, {});
    add(60, { .spoolFree = 21'000'000'000, .movieFree = std::nullopt });
    EXPECT_NEAR(forecast.room()->seconds, 20'000, 1);
}

TEST(DiskForecastTest, AClockThatStandsStillIsNotTrusted)
{
    Disk disk;
    disk.rate = [](double) { return 5 * megabyte; };
    disk.pass(40);
    disk.spooled += 1e9;
    disk.look();
    expectTruth(disk);
}

} // namespace
} // namespace vornic
