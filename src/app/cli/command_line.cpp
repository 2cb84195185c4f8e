#include "app/cli/command_line.h"

#include "app/session/time_text.h"

#include <QCommandLineParser>
#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace vornic {

namespace {

constexpr double maxSeconds = 60.0 * 60 * 24 * 365;
constexpr std::uint64_t minSize = 1'000'000;

CommandLine wrongUsage(const QString &problem)
{
    CommandLine line;
    line.action = CommandLine::Action::WrongUsage;
    line.problem = problem;
    return line;
}

CommandLine wrongValue(const QString &option, const QString &value, const QString &form)
{
    return wrongUsage(CommandLine::tr("--%1 \"%2\" cannot be read; it must be %3.").arg(option, value, form));
}

const QString helpText = QStringLiteral(R"(Vornic records the screen into an mp4.

  vornic                            the window
      --record=full|rectangle [FILE.mp4]
                         record the full display, or the selected rectangle; with FILE.mp4 at once
      --stop             end the recording of the window that runs
      --toggle           begin a recording at once, or end the one that runs: for a key of the desktop
      --pause            pause it; again goes on with it
  vornic record [options] FILE.mp4  record without the window; Ctrl-C or SIGTERM ends it,
                         SIGUSR1 pauses it and goes on with it
      --region X,Y,W,H   pixels from the top left of the main display, as Linux tools print them
                         ("X,Y WxH" and WxH+X+Y are taken too); without it the full display
      --quality high|medium
                         30 or 20 pictures a second; default high
      --audio[=NAME]     sound too: of the first audio input device, or of the one named
      --system-audio     what the system plays, too; mixed with --audio, or alone
      --separate-tracks  not mixed: a track for --audio, and one for --system-audio
      --duration SECONDS end the recording when it is so long
      --max-size SIZE    end it before the movie grows larger: 700M, 1.5G, or bytes; M is 1,000,000
      --overwrite        replace FILE.mp4; without it an existing file is refused
      --ignore-low-space go on below the free-space limit
  vornic recover                    the unfinished recordings, one a line: id, start, length, size, frames
  vornic recover ID [FILE.mp4]      make the movie of one; the beginning of its id is enough
      --quality high|medium
                         another quality than it was recorded with
      --overwrite        replace FILE.mp4
      --delete ID        delete the recording
  vornic devices                    the audio input devices, one a line
  vornic --help, --version

The last line of standard output is the movie's path. Exit status: 0 the movie is complete, 1 it failed,
2 wrong usage, 3 there is a movie, but it has no sound or is shorter than asked for, or its path could not be
told.
)");

void addOptions(QCommandLineParser &parser)
{
    const auto flag = [](const char *name) { return QCommandLineOption(QLatin1StringView(name)); };
    const auto value = [](const char *name) {
        return QCommandLineOption(QLatin1StringView(name), QString(), QStringLiteral("value"));
    };
    parser.addOptions({ value("record"),
                        flag("stop"),
                        flag("toggle"),
                        flag("pause"),
                        value("region"),
                        value("quality"),
                        flag("audio"),
                        flag("system-audio"),
                        flag("separate-tracks"),
                        value("duration"),
                        value("max-size"),
                        flag("overwrite"),
                        flag("ignore-low-space"),
                        value("delete") });
    parser.addOption(QCommandLineOption(QStringList { QStringLiteral("h"), QStringLiteral("help") }));
    parser.addOption(QCommandLineOption(QStringList { QStringLiteral("v"), QStringLiteral("version") }));
}

/// The parser knows options with a value and without, but none that may have one: takes NAME out of
/// "--audio=NAME".
QStringList withoutAudioName(const QStringList &arguments, QString &name)
{
    QStringList rest = arguments;
    const QString prefix = QStringLiteral("--audio=");
    for (QString &argument : rest) {
        if (argument == QStringLiteral("--"))
            break;
        if (argument.startsWith(prefix)) {
            name = argument.sliced(prefix.size());
            argument = QStringLiteral("--audio");
        }
    }
    return rest;
}

/// Reads the quality, where one is given; the problem, or an empty text.
QString readQuality(const QCommandLineParser &parser, std::optional<RecordQuality> &quality)
{
    const QString option = QStringLiteral("quality");
    if (!parser.isSet(option))
        return {};
    const QString value = parser.value(option);
    if (value == QStringLiteral("medium"))
        quality = RecordQuality::Medium;
    else if (value == QStringLiteral("high"))
        quality = RecordQuality::High;
    else
        return wrongValue(option, value, CommandLine::tr("high or medium")).problem;
    return {};
}

/// Reads where a recording ends by itself into \a line; the problem, or an empty text.
QString readEnd(const QCommandLineParser &parser, CommandLine &line)
{
    if (parser.isSet(QStringLiteral("duration"))) {
        const QString value = parser.value(QStringLiteral("duration"));
        bool isNumber = false;
        const double seconds = value.toDouble(&isNumber);
        if (!isNumber || !(seconds > 0) || seconds > maxSeconds)
            return wrongValue(QStringLiteral("duration"),
                              value,
                              CommandLine::tr("a number of seconds above 0, %1 at most")
                                  .arg(secondsText(maxSeconds)))
                .problem;
        line.durationSeconds = seconds;
    }
    if (parser.isSet(QStringLiteral("max-size"))) {
        const QString value = parser.value(QStringLiteral("max-size"));
        line.maxSize = parseSize(value);
        if (!line.maxSize || *line.maxSize < minSize)
            return wrongValue(QStringLiteral("max-size"),
                              value,
                              CommandLine::tr("a size such as 700M or 1.5G, 1M at least"))
                .problem;
    }
    return {};
}

/// Reads the options of a recording into \a line; the problem, or an empty text.
QString readRecordOptions(const QCommandLineParser &parser, CommandLine &line)
{
    if (parser.isSet(QStringLiteral("region"))) {
        const QString value = parser.value(QStringLiteral("region"));
        line.region = parseRegion(value);
        if (!line.region)
            return wrongValue(QStringLiteral("region"),
                              value,
                              CommandLine::tr("X,Y,W,H in pixels, with W and H above 0"))
                .problem;
    }
    std::optional<RecordQuality> quality;
    if (QString problem = readQuality(parser, quality); !problem.isEmpty())
        return problem;
    line.quality = quality.value_or(RecordQuality::High);
    if (QString problem = readEnd(parser, line); !problem.isEmpty())
        return problem;
    line.audio = parser.isSet(QStringLiteral("audio"));
    line.systemAudio = parser.isSet(QStringLiteral("system-audio"));
    line.separateTracks = parser.isSet(QStringLiteral("separate-tracks"));
    if (line.separateTracks && !(line.audio && line.systemAudio))
        return CommandLine::tr("--separate-tracks needs --audio and --system-audio.");
    line.overwrite = parser.isSet(QStringLiteral("overwrite"));
    line.ignoreLowSpace = parser.isSet(QStringLiteral("ignore-low-space"));
    return {};
}

/// \a line, or what is wrong with the name of its file.
CommandLine withMovieFile(const CommandLine &line)
{
    return line.file.endsWith(QStringLiteral(".mp4"), Qt::CaseInsensitive)
        ? line
        : wrongUsage(CommandLine::tr("The movie's file name \"%1\" must end in .mp4.").arg(line.file));
}

CommandLine readWindow(const QCommandLineParser &parser, CommandLine line)
{
    if (!parser.isSet(QStringLiteral("record"))) {
        line.task = parser.isSet(QStringLiteral("stop")) ? CommandLine::Task::Stop
            : parser.isSet(QStringLiteral("pause"))      ? CommandLine::Task::Pause
                                                         : CommandLine::Task::Toggle;
        return line;
    }
    const QString value = parser.value(QStringLiteral("record"));
    if (value == QStringLiteral("full"))
        line.task = CommandLine::Task::RecordFullDisplay;
    else if (value == QStringLiteral("rectangle"))
        line.task = CommandLine::Task::RecordRectangle;
    else
        return wrongValue(QStringLiteral("record"), value, CommandLine::tr("full or rectangle"));
    const QStringList files = parser.positionalArguments();
    if (files.size() > 1)
        return wrongUsage(CommandLine::tr("--record takes one FILE.mp4, not %1.").arg(files.size()));
    line.file = files.value(0);
    return files.isEmpty() ? line : withMovieFile(line);
}

CommandLine readRecord(const QCommandLineParser &parser, CommandLine line)
{
    line.action = CommandLine::Action::Record;
    for (const auto *option : { "record", "stop", "toggle", "pause" }) {
        if (parser.isSet(QLatin1StringView(option)))
            return wrongUsage(CommandLine::tr("--%1 is an option of the window, not of \"vornic record\".")
                                  .arg(QLatin1StringView(option)));
    }
    if (parser.isSet(QStringLiteral("delete")))
        return wrongUsage(
            CommandLine::tr("--%1 is an option of \"vornic recover\".").arg(QStringLiteral("delete")));
    const QStringList files = parser.positionalArguments().mid(1);
    if (files.size() != 1)
        return wrongUsage(
            files.isEmpty()
                ? CommandLine::tr("\"vornic record\" needs the movie's file name: FILE.mp4.")
                : CommandLine::tr("\"vornic record\" takes one FILE.mp4, not %1.").arg(files.size()));
    line.file = files.first();
    line = withMovieFile(line);
    const QString problem = line.problem.isEmpty() ? readRecordOptions(parser, line) : line.problem;
    return problem.isEmpty() ? line : wrongUsage(problem);
}

/// The first option that is set and is none of \a allowed; empty where there is none.
QString foreignOption(const QCommandLineParser &parser, const QStringList &allowed)
{
    for (const QString &option : parser.optionNames()) {
        if (!allowed.contains(option))
            return option;
    }
    return {};
}

CommandLine readRecover(const QCommandLineParser &parser, CommandLine line)
{
    line.action = CommandLine::Action::Recover;
    line.deletes = parser.isSet(QStringLiteral("delete"));
    const QStringList words = parser.positionalArguments().mid(1);
    QStringList allowed;
    if (line.deletes)
        allowed = QStringList { QStringLiteral("delete") };
    else if (!words.isEmpty())
        allowed = QStringList { QStringLiteral("quality"), QStringLiteral("overwrite") };
    if (const QString foreign = foreignOption(parser, allowed); !foreign.isEmpty())
        return wrongUsage(line.deletes || !words.isEmpty()
                              ? CommandLine::tr("--%1 cannot be used here.").arg(foreign)
                              : CommandLine::tr("--%1 needs the id of a recording.").arg(foreign));
    if (words.size() > (line.deletes ? 0 : 2))
        return wrongUsage(line.deletes
                              ? CommandLine::tr("--delete takes one ID and nothing else.")
                              : CommandLine::tr("\"vornic recover\" takes one ID and one FILE.mp4."));
    line.recording = line.deletes ? parser.value(QStringLiteral("delete")) : words.value(0);
    line.file = words.value(1);
    line.overwrite = parser.isSet(QStringLiteral("overwrite"));
    if ((line.deletes || !words.isEmpty()) && line.recording.isEmpty())
        return wrongUsage(CommandLine::tr("The id of the recording is empty."));
    if (const QString problem = readQuality(parser, line.otherQuality); !problem.isEmpty())
        return wrongUsage(problem);
    return words.size() < 2 ? line : withMovieFile(line);
}

} // namespace

std::optional<QRect> parseRegion(const QString &text)
{
    static const std::array forms {
        QRegularExpression(QStringLiteral(R"(^(?<x>-?\d+),(?<y>-?\d+),(?<w>\d+),(?<h>\d+)$)")),
        QRegularExpression(QStringLiteral(R"(^(?<x>-?\d+),(?<y>-?\d+) (?<w>\d+)x(?<h>\d+)$)")),
        QRegularExpression(QStringLiteral(R"(^(?<w>\d+)x(?<h>\d+)(?<x>[+-]\d+)(?<y>[+-]\d+)$)")),
    };
    for (const QRegularExpression &form : forms) {
        const QRegularExpressionMatch match = form.match(text.trimmed());
        if (!match.hasMatch())
            continue;
        std::array<int, 4> numbers {};
        const std::array names { "x", "y", "w", "h" };
        for (std::size_t i = 0; i < names.size(); ++i) {
            constexpr int maxDistance = 1'000'000;
            bool isNumber = false;
            numbers[i] = match.captured(QLatin1StringView(names[i])).toInt(&isNumber);
            if (!isNumber || std::clamp(numbers[i], -maxDistance, maxDistance) != numbers[i])
                return std::nullopt;
        }
        if (numbers[2] < 1 || numbers[3] < 1)
            return std::nullopt;
        return QRect(numbers[0], numbers[1], numbers[2], numbers[3]);
    }
    return std::nullopt;
}

std::optional<std::uint64_t> parseSize(const QString &text)
{
    static const QRegularExpression form(QStringLiteral(R"(^(\d+(?:\.\d+)?) ?([KMG]?)B?$)"),
                                         QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(text.trimmed());
    if (!match.hasMatch())
        return std::nullopt;
    const QString unit = match.captured(2).toUpper();
    const double factor = unit == u"K" ? 1e3 : unit == u"M" ? 1e6 : unit == u"G" ? 1e9 : 1;
    constexpr double maxSize = 1e15;
    const double bytes = match.captured(1).toDouble() * factor;
    return bytes <= maxSize ? std::optional(static_cast<std::uint64_t>(bytes)) : std::nullopt;
}

CommandLine parseCommandLine(const QStringList &arguments)
{
    CommandLine line;
    QCommandLineParser parser;
    addOptions(parser);
    if (!parser.parse(withoutAudioName(arguments, line.audioDevice)))
        return wrongUsage(parser.errorText());
    const QStringList words = parser.positionalArguments();
    if (parser.isSet(QStringLiteral("help"))) {
        line.action = CommandLine::Action::Help;
        line.helpText = helpText;
        return line;
    }
    if (parser.isSet(QStringLiteral("version"))) {
        line.action = CommandLine::Action::Version;
        return line;
    }
    if (!words.isEmpty() && words.first() == QStringLiteral("record"))
        return readRecord(parser, line);
    if (!words.isEmpty() && words.first() == QStringLiteral("recover"))
        return readRecover(parser, line);
    const bool records = parser.isSet(QStringLiteral("record"));
    const bool acts = std::ranges::any_of(std::array { "stop", "toggle", "pause" }, [&](const char *option) {
        return parser.isSet(QLatin1StringView(option));
    });
    const bool isForWindow = records || (acts && words.isEmpty());
    if (isForWindow && parser.optionNames().size() == 1)
        return readWindow(parser, line);
    if (!parser.optionNames().isEmpty())
        return wrongUsage((parser.isSet(QStringLiteral("delete"))
                               ? CommandLine::tr("--%1 is an option of \"vornic recover\".")
                               : CommandLine::tr("--%1 is an option of \"vornic record\"."))
                              .arg(parser.optionNames().first()));
    if (words.isEmpty())
        return line;
    if (words.first() != QStringLiteral("devices"))
        return wrongUsage(
            CommandLine::tr("Unknown command \"%1\"; the commands are record, recover and devices.")
                .arg(words.first()));
    if (words.size() > 1)
        return wrongUsage(CommandLine::tr("\"vornic devices\" takes no arguments."));
    line.action = CommandLine::Action::Devices;
    return line;
}

} // namespace vornic
