#include "app/session/recording_room.h"
#include "app/session/room_text.h"

#include <QLocale>

#include <gtest/gtest.h>

#include <limits>

namespace vornic {
namespace {

class RoomTextTest : public ::testing::Test
{
protected:
    RoomTextTest() { QLocale::setDefault(QLocale::c()); }
};

TEST_F(RoomTextTest, ALengthIsRoundedDownAndRougherTheLongerItIs)
{
    const auto length = [](double hours, double minutes, double seconds) {
        return roughLength((hours * 60 + minutes) * 60 + seconds);
    };
    EXPECT_EQ(length(0, 0, 0), "less than a minute");
    EXPECT_EQ(length(0, 0, 59.9), "less than a minute");
    EXPECT_EQ(length(0, 1, 0), "1 min");
    EXPECT_EQ(length(0, 9, 59.9), "9 min");
    EXPECT_EQ(length(0, 59, 59.9), "59 min");
    EXPECT_EQ(length(1, 0, 0), "1 h");
    EXPECT_EQ(length(1, 9, 59), "1 h");
    EXPECT_EQ(length(3, 10, 0), "3 h 10 min");
    EXPECT_EQ(length(9, 59, 59), "9 h 50 min");
    EXPECT_EQ(length(10, 59, 59), "10 h");
    EXPECT_EQ(length(23, 59, 59), "23 h");
    EXPECT_EQ(length(24, 0, 0), "more than a day");
    EXPECT_EQ(roughLength(std::numeric_limits<double>::infinity()), "more than a day");
}

TEST_F(RoomTextTest, SizeAndRoom)
{
    RecordingRoom room { .spooledBytes = 1'949'000'000, .seconds = 3 * 3600 + 12 * 60, .folder = {} };
    EXPECT_EQ(sizeAndRoom(room), "1.9 GB, room for 3 h 10 min");
    room.seconds.reset();
    EXPECT_EQ(sizeAndRoom(room), "1.9 GB");
    room.spooledBytes = 999'499'999;
    EXPECT_EQ(sizeAndRoom(room), "999 MB");
    room.spooledBytes = 0;
    EXPECT_EQ(sizeAndRoom(room), "0 bytes");
}

TEST_F(RoomTextTest, TheWarningTellsWhatHappensThen)
{
    RecordingRoom room { .seconds = 500, .folder = "/home/a/.cache" };
    EXPECT_EQ(
        littleRoom(room),
        "At this rate there is room for 8 min more: then the disk that holds /home/a/.cache is almost full, "
        "and the recording ends by itself.");
    room.isForMovie = true;
    room.folder = "/media/stick";
    EXPECT_EQ(
        littleRoom(room),
        "At this rate there is room for 8 min more: then the disk that holds /media/stick is too small for "
        "the movie.");
}

} // namespace
} // namespace vornic
