#include "app/cli/command_line.h"

#include <gtest/gtest.h>

namespace vornic {
namespace {

using Action = CommandLine::Action;

CommandLine parse(const QStringList &arguments)
{
    return parseCommandLine(QStringList { "vornic" } + arguments);
}

TEST(CommandLineTest, WithoutArgumentsItIsTheWindow)
{
    EXPECT_EQ(parse({}).action, Action::Window);
}

TEST(CommandLineTest, TheWindowMayBeginToRecord)
{
    const CommandLine full = parseCommandLine({ "vornic", "--record=full" });
    EXPECT_EQ(full.action, CommandLine::Action::Window);
    EXPECT_EQ(full.task, CommandLine::Task::RecordFullDisplay);
    EXPECT_EQ(parseCommandLine({ "vornic", "--record", "rectangle" }).task,
              CommandLine::Task::RecordRectangle);
    EXPECT_EQ(parseCommandLine({ "vornic" }).task, CommandLine::Task::Show);
    EXPECT_TRUE(full.file.isEmpty());
    const CommandLine toFile = parseCommandLine({ "vornic", "--record=rectangle", "a b.mp4" });
    EXPECT_EQ(toFile.action, CommandLine::Action::Window);
    EXPECT_EQ(toFile.task, CommandLine::Task::RecordRectangle);
    EXPECT_EQ(toFile.file, "a b.mp4");
    EXPECT_EQ(parseCommandLine({ "vornic", "--record=full", "a.avi" }).problem,
              "The movie's file name \"a.avi\" must end in .mp4.");
    EXPECT_EQ(parseCommandLine({ "vornic", "--record=full", "a.mp4", "b.mp4" }).problem,
              "--record takes one FILE.mp4, not 2.");
    EXPECT_EQ(parseCommandLine({ "vornic", "--stop", "a.mp4" }).action, CommandLine::Action::WrongUsage);
    EXPECT_EQ(parseCommandLine({ "vornic", "--pause" }).task, CommandLine::Task::Pause);
    EXPECT_EQ(parseCommandLine({ "vornic", "--pause" }).action, CommandLine::Action::Window);
    EXPECT_EQ(parseCommandLine({ "vornic", "--pause", "a.mp4" }).action, CommandLine::Action::WrongUsage);
    EXPECT_EQ(parseCommandLine({ "vornic", "--pause", "--stop" }).action, CommandLine::Action::WrongUsage);
    EXPECT_EQ(parseCommandLine({ "vornic", "record", "--pause", "a.mp4" }).action,
              CommandLine::Action::WrongUsage);
    EXPECT_EQ(parseCommandLine({ "vornic", "--stop" }).task, CommandLine::Task::Stop);
    EXPECT_EQ(parseCommandLine({ "vornic", "--stop" }).action, CommandLine::Action::Window);
    EXPECT_EQ(parseCommandLine({ "vornic", "--stop", "--record=full" }).action,
              CommandLine::Action::WrongUsage);
    EXPECT_EQ(parseCommandLine({ "vornic", "--toggle" }).task, CommandLine::Task::Toggle);
    EXPECT_EQ(parseCommandLine({ "vornic", "--toggle" }).action, CommandLine::Action::Window);
    for (const char *other : { "--stop", "--record=full", "a.mp4" })
        EXPECT_EQ(parseCommandLine({ "vornic", "--toggle", other }).action, CommandLine::Action::WrongUsage)
            << other;
    EXPECT_EQ(parseCommandLine({ "vornic", "--record=some" }).problem,
              "--record \"some\" cannot be read; it must be full or rectangle.");
    EXPECT_EQ(parseCommandLine({ "vornic", "record", "--record=full", "o.mp4" }).problem,
              "--record is an option of the window, not of \"vornic record\".");
    EXPECT_EQ(parseCommandLine({ "vornic", "record", "--toggle", "o.mp4" }).problem,
              "--toggle is an option of the window, not of \"vornic record\".");
}

TEST(CommandLineTest, Commands)
{
    EXPECT_EQ(parse({ "devices" }).action, Action::Devices);
    EXPECT_EQ(parse({ "--version" }).action, Action::Version);
    EXPECT_EQ(parse({ "-v" }).action, Action::Version);
    const CommandLine help = parse({ "record", "--help" });
    EXPECT_EQ(help.action, Action::Help);
    for (const char *option : { "--region",
                                "--quality",
                                "--audio",
                                "--system-audio",
                                "--separate-tracks",
                                "--duration",
                                "--max-size",
                                "--overwrite",
                                "--ignore-low-space",
                                "--delete" })
        EXPECT_TRUE(help.helpText.contains(option)) << option;
}

TEST(CommandLineTest, ARecordingWithoutOptionsHasTheDefaults)
{
    const CommandLine line = parse({ "record", "o.mp4" });
    EXPECT_EQ(line.action, Action::Record);
    EXPECT_EQ(line.file, "o.mp4");
    EXPECT_FALSE(line.region);
    EXPECT_EQ(line.quality, RecordQuality::High);
    EXPECT_FALSE(line.audio);
    EXPECT_FALSE(line.durationSeconds);
    EXPECT_FALSE(line.maxSize);
    EXPECT_FALSE(line.overwrite);
    EXPECT_FALSE(line.ignoreLowSpace);
}

TEST(CommandLineTest, SizesAreWrittenAsPeopleDo)
{
    EXPECT_EQ(parseSize("1500000"), 1'500'000);
    EXPECT_EQ(parseSize("1500 k"), 1'500'000);
    EXPECT_EQ(parseSize("1.5M"), 1'500'000);
    EXPECT_EQ(parseSize("700 MB"), 700'000'000);
    EXPECT_EQ(parseSize("2g"), 2'000'000'000);
    for (const char *wrong : { "", "M", "1,5M", ".5M", "1.5.5M", "1MM", "1MiB", "two", "-5", "1e6" })
        EXPECT_FALSE(parseSize(wrong)) << wrong;
}

TEST(CommandLineTest, ARecordingWithAllOptions)
{
    const CommandLine line = parse({ "record",
                                     "--region",
                                     "101,57,641,361",
                                     "--quality=medium",
                                     "--audio=Built-in microphone",
                                     "--duration",
                                     "2.5",
                                     "--max-size",
                                     "700M",
                                     "--overwrite",
                                     "--ignore-low-space",
                                     "/tmp/o.MP4" });
    ASSERT_EQ(line.action, Action::Record) << line.problem.toStdString();
    EXPECT_EQ(line.region, QRect(101, 57, 641, 361));
    EXPECT_EQ(line.quality, RecordQuality::Medium);
    EXPECT_TRUE(line.audio);
    EXPECT_EQ(line.audioDevice, "Built-in microphone");
    EXPECT_EQ(line.durationSeconds, 2.5);
    EXPECT_EQ(line.maxSize, 700'000'000);
    EXPECT_TRUE(line.overwrite);
    EXPECT_TRUE(line.ignoreLowSpace);
}

TEST(CommandLineTest, AudioNeedsNoName)
{
    const CommandLine line = parse({ "record", "--audio", "o.mp4" });
    EXPECT_TRUE(line.audio);
    EXPECT_TRUE(line.audioDevice.isEmpty());
    EXPECT_EQ(line.file, "o.mp4");
}

TEST(CommandLineTest, WhatTheSystemPlaysIsRecordedAloneOrBesideAnInput)
{
    const CommandLine alone = parse({ "record", "--system-audio", "o.mp4" });
    EXPECT_TRUE(alone.systemAudio);
    EXPECT_FALSE(alone.audio);
    EXPECT_TRUE(alone.hasSound());
    const CommandLine both = parse({ "record", "--audio=Desk microphone", "--system-audio", "o.mp4" });
    EXPECT_TRUE(both.systemAudio && both.audio);
    EXPECT_EQ(both.audioDevice, "Desk microphone");
    EXPECT_FALSE(parse({ "record", "o.mp4" }).hasSound());
    EXPECT_FALSE(both.separateTracks);
    EXPECT_TRUE(
        parse({ "record", "--audio", "--system-audio", "--separate-tracks", "o.mp4" }).separateTracks);
    for (const char *one : { "--audio", "--system-audio" })
        EXPECT_EQ(parse({ "record", one, "--separate-tracks", "o.mp4" }).problem,
                  "--separate-tracks needs --audio and --system-audio.");
    EXPECT_EQ(parse({ "--system-audio" }).problem, "--system-audio is an option of \"vornic record\".");
}

TEST(CommandLineTest, RecoveringListsMakesOrDeletes)
{
    const CommandLine list = parse({ "recover" });
    EXPECT_EQ(list.action, Action::Recover);
    EXPECT_TRUE(list.recording.isEmpty());
    const CommandLine made = parse({ "recover", "20261122-140512-3fa9" });
    EXPECT_EQ(made.action, Action::Recover);
    EXPECT_EQ(made.recording, "20261122-140512-3fa9");
    EXPECT_TRUE(made.file.isEmpty());
    EXPECT_FALSE(made.otherQuality);
    EXPECT_FALSE(made.deletes || made.overwrite);
    const CommandLine all = parse({ "recover", "--quality=medium", "2026", "a b.mp4", "--overwrite" });
    EXPECT_EQ(all.action, Action::Recover) << all.problem.toStdString();
    EXPECT_EQ(all.file, "a b.mp4");
    EXPECT_EQ(all.otherQuality, RecordQuality::Medium);
    EXPECT_TRUE(all.overwrite);
    EXPECT_EQ(parse({ "recover", "2026", "--quality", "high" }).otherQuality, RecordQuality::High);
    const CommandLine deleted = parse({ "recover", "--delete", "2026" });
    EXPECT_EQ(deleted.action, Action::Recover);
    EXPECT_EQ(deleted.recording, "2026");
    EXPECT_TRUE(deleted.deletes);
}

TEST(CommandLineTest, RecoveringTakesNothingElse)
{
    const auto problem = [](const QStringList &arguments) {
        const CommandLine line = parse(QStringList { "recover" } + arguments);
        EXPECT_EQ(line.action, Action::WrongUsage) << arguments.join(' ').toStdString();
        return line.problem;
    };
    EXPECT_EQ(problem({ "--overwrite" }), "--overwrite needs the id of a recording.");
    EXPECT_EQ(problem({ "2026", "--region", "1,2,3,4" }), "--region cannot be used here.");
    EXPECT_EQ(problem({ "2026", "a.mp4", "--delete", "2027" }), "--delete takes one ID and nothing else.");
    EXPECT_EQ(problem({ "--delete", "2026", "--quality=high" }), "--quality cannot be used here.");
    EXPECT_EQ(problem({ "--delete", "" }), "The id of the recording is empty.");
    EXPECT_EQ(problem({ "2026", "a.avi" }), "The movie's file name \"a.avi\" must end in .mp4.");
    EXPECT_EQ(problem({ "2026", "a.mp4", "b.mp4" }), "\"vornic recover\" takes one ID and one FILE.mp4.");
    EXPECT_TRUE(problem({ "2026", "--quality=best" }).contains("high or medium"));
    problem({ "--delete" });
    EXPECT_EQ(parse({ "record", "--delete", "2026", "o.mp4" }).problem,
              "--delete is an option of \"vornic recover\".");
    EXPECT_EQ(parse({ "--delete", "2026" }).problem, "--delete is an option of \"vornic recover\".");
}

TEST(CommandLineTest, RegionsInTheFormsThatToolsPrint)
{
    const QRect region(-3, 20, 640, 480);
    EXPECT_EQ(parseRegion("-3,20,640,480"), region);
    EXPECT_EQ(parseRegion("-3,20 640x480"), region);
    EXPECT_EQ(parseRegion("640x480-3+20"), region);
    for (const char *wrong : { "",
                               "1,2,3",
                               "1,2,3,4,5",
                               "1,2,0,4",
                               "1,2,3,0",
                               "1,2,-3,4",
                               "a,b,c,d",
                               "1.5,2,3,4",
                               "99999999999,0,10,10",
                               "2000000,0,10,10",
                               "-2147483648,0,10,10",
                               "640x480",
                               "640x480+1",
                               "1,2 3,4",
                               "1 2 3 4" })
        EXPECT_FALSE(parseRegion(wrong)) << wrong;
}

TEST(CommandLineTest, WrongUsageNamesTheValueAndTheForm)
{
    const auto problem = [](const QStringList &arguments) {
        const CommandLine line = parse(arguments);
        EXPECT_EQ(line.action, Action::WrongUsage) << arguments.join(' ').toStdString();
        EXPECT_FALSE(line.problem.isEmpty());
        return line.problem;
    };
    EXPECT_TRUE(problem({ "record", "--region", "5x5", "o.mp4" }).contains("5x5"));
    EXPECT_TRUE(problem({ "record", "--region", "5x5", "o.mp4" }).contains("X,Y,W,H"));
    EXPECT_TRUE(problem({ "record", "--quality", "best", "o.mp4" }).contains("high or medium"));
    for (const char *wrong : { "0", "-1", "abc", "nan", "inf", "1e300", "" })
        EXPECT_TRUE(problem({ "record", "--duration", wrong, "o.mp4" }).contains("seconds")) << wrong;
    for (const char *wrong : { "0", "-1M", "abc", "1e9", "5X", "999999", "900K", "", "M", "99999999999G" })
        EXPECT_TRUE(problem({ "record", "--max-size", wrong, "o.mp4" }).contains("700M")) << wrong;
    problem({ "record" });
    problem({ "record", "a.mp4", "b.mp4" });
    problem({ "record", "o.avi" });
    problem({ "record", "--bitrate", "5", "o.mp4" });
    problem({ "play", "o.mp4" });
    problem({ "devices", "more" });
    problem({ "--overwrite" });
    problem({ "devices", "--duration", "5" });
}

} // namespace
} // namespace vornic
