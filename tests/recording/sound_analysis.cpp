#include "sound_analysis.h"

#include "movie_test_support.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdio>
#include <numbers>
#include <numeric>

namespace vornic {

namespace {

constexpr std::size_t framesPerSecond = 48'000;

} // namespace

std::vector<HeardTone> tonesIn(const std::vector<std::int16_t> &sound, double hertz)
{
    constexpr std::size_t window = framesPerSecond / 100;
    std::vector<HeardTone> tones;
    for (std::size_t first = 0; (first + window) * 2 <= sound.size(); first += window) {
        std::complex<double> sum = 0;
        for (std::size_t frame = first; frame < first + window; ++frame) {
            const double sample = (sound[2 * frame] + sound[2 * frame + 1]) / 2.0 / 32768;
            const double angle = 2 * std::numbers::pi * hertz * static_cast<double>(frame) / framesPerSecond;
            sum += sample * std::polar(1.0, -angle);
        }
        sum *= std::complex<double>(0, 2.0 / window);
        tones.push_back({ std::abs(sum), std::arg(sum) });
    }
    return tones;
}

std::vector<double> beepsIn(const std::vector<std::int16_t> &sound)
{
    constexpr int loud = 3000;
    constexpr std::size_t quietFrames = framesPerSecond / 4;
    std::vector<double> beeps;
    std::size_t quiet = 0;
    for (std::size_t frame = 0; 2 * frame < sound.size(); ++frame) {
        const bool isLoud = std::abs(sound[2 * frame]) > loud;
        if (isLoud && quiet > quietFrames)
            beeps.push_back(static_cast<double>(frame) / framesPerSecond);
        quiet = isLoud ? 0 : quiet + 1;
    }
    return beeps;
}

std::vector<double> flashesIn(const QString &movie)
{
    const QJsonObject probed = testing::probe(movie);
    const QJsonObject video = testing::streamOf(probed, "video");
    const auto pixels = static_cast<qsizetype>(video["width"].toInt()) * video["height"].toInt();
    const QList<qint64> times = testing::numbersOf(probed, "packets", "video", "pts");
    const QStringList base = video["time_base"].toString().split(u'/');
    const QByteArray planes = testing::decodedPlanes(movie);
    std::vector<double> flashes;
    bool wasBright = true;
    double before = 0;
    for (qsizetype picture = 0; picture < times.size(); ++picture) {
        const auto *luma
            = reinterpret_cast<const unsigned char *>(planes.constData()) + picture * pixels * 3 / 2;
        const bool isBright = std::accumulate(luma, luma + pixels, 0LL) / pixels > 128;
        const double time
            = static_cast<double>(times[picture]) * base.at(0).toDouble() / base.at(1).toDouble();
        if (isBright && !wasBright && time - before < 0.045)
            flashes.push_back(time);
        wasBright = isBright;
        before = time;
    }
    return flashes;
}

/// A flash whose darkness and silence before it a pause has cut has no beginning to measure.
static bool isCut(double flash, const QList<double> &cuts)
{
    return std::ranges::any_of(cuts, [&](double cut) { return cut > flash - 0.3 && cut < flash + 0.06; });
}

Distances distancesIn(const QString &movie, const QList<double> &cuts)
{
    const std::vector<double> beeps = beepsIn(testing::decodedSound(movie));
    if (beeps.empty())
        return {};
    std::vector<double> apart;
    std::printf("picture after sound, ms:");
    for (const double flash : flashesIn(movie)) {
        // The output's latency changes when it begins to be recorded, and a beep that plays just then is cut.
        if (flash < 1 || isCut(flash, cuts))
            continue;
        const double nearest
            = *std::ranges::min_element(beeps, {}, [&](double beep) { return std::abs(beep - flash); });
        std::printf(" %.1f", (flash - nearest) * 1000);
        apart.push_back(std::abs(flash - nearest) * 1000);
    }
    std::ranges::sort(apart);
    const Distances found { apart.size(),
                            apart.empty() ? 0 : apart[apart.size() / 2],
                            apart.empty() ? 0 : apart.back() };
    std::printf("; median distance %.1f, largest %.1f\n", found.median, found.largest);
    return found;
}

} // namespace vornic
