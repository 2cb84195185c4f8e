/// What the disk costs a capture pass: how long a push takes while spools are written and synced behind it, beside
/// the same pushes with syncing switched off.
///
///     spool_benchmark [seconds of each turn]
///
/// Pushes a page of text that scrolls at 1920 x 1080, 30 times a second, into a spool in the cache folder
/// ($XDG_CACHE_HOME, which should lie on a disk). The two take turns within one run; times are milliseconds.

#include "capture/record/VNBufferDiscr.h"
#include "capture/spool/VNBufferMgr.h"
#include "display/bitmap_image.h"
#include "display/fake_display.h"
#include "support/test_pictures.h"

#include <QGuiApplication>

#include <dlfcn.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

namespace {

std::atomic<bool> syncs = true;
std::atomic<int> syncCount = 0;

} // namespace

/// Stands before the system's, to switch it off.
extern "C" int fdatasync(int descriptor)
{
    if (!syncs)
        return 0;
    ++syncCount;
    using Function = int (*)(int);
    static const auto systems = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "fdatasync"));
    return systems(descriptor);
}

namespace {

using namespace vornic;
using Clock = std::chrono::steady_clock;

constexpr QSize screenSize(1920, 1080);
constexpr auto framePeriod = std::chrono::nanoseconds(1'000'000'000 / 30);

/// The times of \a seconds of pushes, in milliseconds.
std::vector<double> pushFor(int seconds, const std::vector<QImage> &pages, std::uint64_t &bytes)
{
    VNBufferMgr spool(4);
    spool.readyToRecord();
    std::vector<double> times;
    Clock::time_point next = Clock::now();
    for (int frame = 0; frame < 30 * seconds; ++frame) {
        const auto record = VNBufferDiscr::createWithScreenImage(
            bitmapImageFrom(pages[static_cast<std::size_t>(frame) % pages.size()]));
        record->setBufferTimestamp(static_cast<std::uint64_t>(frame) * 3000);
        std::this_thread::sleep_until(next);
        next += framePeriod;
        const Clock::time_point start = Clock::now();
        spool.pushRecordBuffer(*record);
        times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    }
    bytes = spool.spooledBytes();
    spool.endVideoRecord();
    spool.clear();
    return times;
}

void print(const char *name, std::vector<double> times)
{
    std::ranges::sort(times);
    const auto at = [&](double part) {
        return times[std::min(times.size() - 1,
                              static_cast<std::size_t>(part * static_cast<double>(times.size())))];
    };
    std::printf("%-16s %6zu pushes  median %6.2f  99%% %6.2f  99.9%% %6.2f  maximum %6.2f ms\n",
                name,
                times.size(),
                at(0.5),
                at(0.99),
                at(0.999),
                times.back());
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const int seconds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 30;
    setMainDisplay(std::make_shared<FakeDisplay>(screenSize));
    std::vector<QImage> pages;
    for (std::uint32_t seed = 0; seed < 8; ++seed)
        pages.push_back(test::textPage(screenSize, seed));

    constexpr int turns = 4;
    std::vector<double> with;
    std::vector<double> without;
    std::uint64_t bytes = 0;
    for (int turn = 0; turn < turns; ++turn)
        for (std::vector<double> *times : { &with, &without }) {
            syncs = times == &with;
            const std::vector<double> taken = pushFor(seconds, pages, bytes);
            times->insert(times->end(), taken.begin(), taken.end());
        }
    std::printf("%.1f MB a second, %d syncs\n", static_cast<double>(bytes) / 1e6 / seconds, syncCount.load());
    print("with syncing", with);
    print("without", without);
    setMainDisplay(nullptr);
    return 0;
}
