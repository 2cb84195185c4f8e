/// What spooling recorded sound costs: archiving a chunk, LZO, and appending it. The rate counter is the part
/// of one core that a recording of 48 kHz stereo spends on it.

#include "audio/PKAudioRecorderData.h"
#include "base/log.h"
#include "capture/spool/VNBufferMgr.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <random>

namespace {

using namespace vornic;

constexpr int framesInChunk = 960;
constexpr double chunkSeconds = 0.02;

QByteArray chunkOf(const std::function<double(int frame)> &wave)
{
    QByteArray bytes(framesInChunk * 4, '\0');
    for (int frame = 0; frame < framesInChunk; ++frame) {
        const auto sample = static_cast<std::int16_t>(wave(frame) * 32767);
        std::memcpy(bytes.data() + frame * 4, &sample, sizeof sample);
        std::memcpy(bytes.data() + frame * 4 + 2, &sample, sizeof sample);
    }
    return bytes;
}

void spool(benchmark::State &state, const std::function<double(int frame)> &wave)
{
    const QTemporaryDir folder;
    qputenv("XDG_CACHE_HOME", folder.path().toUtf8());
    VNBufferMgr manager(4);
    manager.readyToRecord();
    const PKAudioRecorderData chunk(chunkOf(wave), defaultAudioStreamBasicDescription());
    for ([[maybe_unused]] auto step : state)
        manager.pushAudioBuffer(chunk);
    state.counters["of_a_core"]
        = benchmark::Counter(chunkSeconds * static_cast<double>(state.iterations()),
                             benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    manager.setExit(true);
    manager.clear();
}

void silence(benchmark::State &state)
{
    spool(state, [](int) { return 0.0; });
}

void speechLikeTone(benchmark::State &state)
{
    spool(state, [](int frame) { return 0.3 * std::sin(frame * 0.05) + 0.1 * std::sin(frame * 0.31); });
}

void noise(benchmark::State &state)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<double> sample(-1, 1);
    spool(state, [&](int) { return sample(random); });
}

} // namespace

BENCHMARK(silence)->UseRealTime();
BENCHMARK(speechLikeTone)->UseRealTime();
BENCHMARK(noise)->UseRealTime();

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    setLogSink([](const QString &) {});
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
