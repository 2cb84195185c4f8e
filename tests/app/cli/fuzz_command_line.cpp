/// Feeds random regions and command lines to their readers: fuzz_command_line [inputs [seed]].
///
/// What is taken must be usable, and what is not must be told. Fails where all or none were taken: then the inputs test
/// nothing.

#include "app/cli/command_line.h"
#include "support/fuzz_run.h"

#include <QCoreApplication>

#include <cmath>
#include <cstdio>
#include <iterator>

using namespace vornic;

namespace {

using test::FuzzRandom;

const char *const numbers[] = { "0",          "1",          "-1",          "100",
                                "1920",       "+7",         "1000000",     "1000001",
                                "2147483647", "2147483648", "-2147483648", "4294967297",
                                "0x10",       "1e3",        "1.5",         "nan",
                                "inf",        "-0",         "000012",      "99999999999999999999999999",
                                "",           "\u0663",     "4951",        "31536000" };
const char *const separators[] = { ",", " ", "x", "+", "-", ";", "\n", "", ", ", "X" };
const char *const words[] = { "record",
                              "recover",
                              "devices",
                              "--region",
                              "--region=",
                              "--quality",
                              "high",
                              "--quality=low",
                              "--duration",
                              "--duration=",
                              "--max-size",
                              "--max-size=1.5G",
                              "--audio",
                              "--audio=",
                              "--overwrite",
                              "--ignore-low-space",
                              "--delete",
                              "--stop",
                              "--record",
                              "rectangle",
                              "--help",
                              "-v",
                              "--",
                              "-",
                              "a.mp4",
                              ".mp4",
                              "a.MP4",
                              "-h=",
                              "--record=full",
                              "20261122-060920-cce7",
                              "",
                              "--audio=\n",
                              "-platform",
                              "--no-such",
                              "ä.mp4" };

template<typename Texts>
QString oneOf(const Texts &texts, FuzzRandom &random)
{
    return QString::fromUtf8(texts[random.below(std::ssize(texts))]);
}

QString randomText(FuzzRandom &random)
{
    const QByteArray bytes = random.bytes(30);
    return random.below(2) == 0 ? QString::fromUtf8(bytes) : QString::fromLatin1(bytes);
}

QString randomNumber(FuzzRandom &random)
{
    return random.below(10) == 0 ? oneOf(numbers, random) : QString::number(random.below(4000));
}

/// Mostly in one of the forms that are taken, with a part of it changed now and then.
QString randomRegion(FuzzRandom &random)
{
    if (random.below(8) == 0)
        return randomText(random);
    const char *const forms[] = { "x,y,w,h", "x,y wxh", "wxh+x+y" };
    QString region;
    for (const QChar part : oneOf(forms, random)) {
        if (random.below(12) == 0)
            region += oneOf(separators, random);
        else if (part == u'x' && !region.isEmpty() && region.back().isDigit())
            region += part; // between width and height
        else
            region += part.isLetter() ? randomNumber(random) : QString(part);
    }
    return random.below(20) == 0 ? u' ' + region + u'\t' : region;
}

QStringList randomCommandLine(FuzzRandom &random)
{
    QStringList line { QStringLiteral("vornic") };
    if (random.below(2) == 0)
        line += { QStringLiteral("record"), QStringLiteral("a.mp4") };
    for (int count = random.below(6); count > 0; --count) {
        switch (random.below(6)) {
        case 0:
            line += randomText(random);
            break;
        case 1:
            line += { QStringLiteral("--region"), randomRegion(random) };
            break;
        case 2:
            line += { QStringLiteral("--max-size"), oneOf(numbers, random) };
            break;
        case 3:
            line += { QStringLiteral("--duration"), oneOf(numbers, random) };
            break;
        default:
            line += oneOf(words, random);
        }
    }
    return line;
}

void require(bool holds, const char *what, const QString &input)
{
    if (!holds)
        qFatal("%s: %s", what, qPrintable(input));
}

bool isTaken(const QString &text)
{
    const std::optional<QRect> region = parseRegion(text);
    require(!region || (region->width() > 0 && region->height() > 0), "A region without a size", text);
    require(!region || region->right() > region->left() || region->width() == 1, "A region that wraps", text);
    return region.has_value();
}

bool isTaken(const QStringList &arguments)
{
    const CommandLine line = parseCommandLine(arguments);
    const QString input = arguments.join(u'|');
    const bool isWrong = line.action == CommandLine::Action::WrongUsage;
    require(isWrong == !line.problem.isEmpty(), "Wrong usage without a problem, or the reverse", input);
    if (isWrong)
        return false;
    if (line.action == CommandLine::Action::Record)
        require(line.file.endsWith(".mp4", Qt::CaseInsensitive), "A recording to no movie", input);
    if (line.durationSeconds)
        require(std::isfinite(*line.durationSeconds) && *line.durationSeconds > 0, "No duration", input);
    if (line.maxSize)
        require(*line.maxSize >= 1'000'000, "No size", input);
    if (line.region)
        require(!line.region->isEmpty(), "No region", input);
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    test::FuzzRun run(argc, argv, 100'000);
    int regions = 0;
    run.feedAll("regions", [&](int) { regions += isTaken(randomRegion(run.random())) ? 1 : 0; });
    int lines = 0;
    run.feedAll("command lines", [&](int) { lines += isTaken(randomCommandLine(run.random())) ? 1 : 0; });
    std::printf("%d regions and %d command lines were taken\n", regions, lines);
    return regions > 0 && regions < run.count() && lines > 0 && lines < run.count() ? 0 : 1;
}
