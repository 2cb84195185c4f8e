/// What one capture pass costs, beside the least that any recorder of this kind has to do: one shared-memory
/// grab and one JPEG compression of the same picture on one thread.
///
/// Needs an X server of 1920 x 1080 on $DISPLAY whose screen nobody else changes (benchmarks/run starts one).
/// Floor and pass take turns within one run; times are milliseconds, ratios are of their medians.

#include "capture/VNCGDisplay.h"
#include "capture/jpeg/jpeg_codec.h"
#include "capture/record/VNBufferDiscr.h"
#include "capture/spool/VNBufferMgr.h"
#include "display/bitmap_image.h"
#include "display/display_backend.h"
#include "support/screen_painter.h"
#include "support/test_pictures.h"

#include <QGuiApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <jpeglib.h>
#include <sys/ipc.h>
#include <sys/shm.h>
#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <vector>

namespace {

using namespace vornic;
using Clock = std::chrono::steady_clock;

constexpr QSize screenSize(1920, 1080);

double millisecondsOf(const std::function<void()> &work)
{
    const Clock::time_point start = Clock::now();
    work();
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double median(std::vector<double> values)
{
    if (values.empty())
        return 0;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// One grab into shared memory and one compression, with nothing around them.
class Floor
{
public:
    Floor()
        : m_connection(xcb_connect(nullptr, nullptr))
        , m_root(xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root)
        , m_shmId(shmget(IPC_PRIVATE, byteCount, IPC_CREAT | 0600))
        , m_pixels(static_cast<uchar *>(shmat(m_shmId, nullptr, 0)))
        , m_segment(xcb_generate_id(m_connection))
    {
        xcb_shm_attach(m_connection, m_segment, static_cast<std::uint32_t>(m_shmId), 0);
        free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
        shmctl(m_shmId, IPC_RMID, nullptr);
    }
    ~Floor()
    {
        xcb_disconnect(m_connection);
        shmdt(m_pixels);
    }
    Floor(const Floor &) = delete;
    Floor &operator=(const Floor &) = delete;

    void run()
    {
        const auto cookie = xcb_shm_get_image(m_connection,
                                              m_root,
                                              0,
                                              0,
                                              screenSize.width(),
                                              screenSize.height(),
                                              ~0U,
                                              XCB_IMAGE_FORMAT_Z_PIXMAP,
                                              m_segment,
                                              0);
        free(xcb_shm_get_image_reply(m_connection, cookie, nullptr));
        compress();
    }

private:
    static constexpr std::size_t byteCount = std::size_t { 4 } * 1920 * 1080;

    void compress()
    {
        jpeg_compress_struct info;
        jpeg_error_mgr errors;
        info.err = jpeg_std_error(&errors);
        jpeg_create_compress(&info);
        jpeg_mem_dest(&info, &m_output, &m_outputSize);
        info.image_width = static_cast<JDIMENSION>(screenSize.width());
        info.image_height = static_cast<JDIMENSION>(screenSize.height());
        info.input_components = 4;
        info.in_color_space = JCS_EXT_BGRX;
        jpeg_set_defaults(&info);
        jpeg_set_quality(&info, jpegQuality, TRUE);
        jpeg_start_compress(&info, TRUE);
        while (info.next_scanline < info.image_height) {
            JSAMPROW row = m_pixels + std::size_t { info.next_scanline } * 4 * 1920;
            jpeg_write_scanlines(&info, &row, 1);
        }
        jpeg_finish_compress(&info);
        jpeg_destroy_compress(&info);
        std::free(m_output);
        m_output = nullptr;
    }

    xcb_connection_t *m_connection;
    xcb_window_t m_root;
    int m_shmId;
    uchar *m_pixels;
    xcb_shm_seg_t m_segment;
    unsigned char *m_output = nullptr;
    unsigned long m_outputSize = 0;
};

/// A screen whose contents a benchmark changes, and the parts of a pass over it.
class Stage
{
public:
    Stage()
        : m_painter(test::ScreenPainter::connect())
    {
        m_manager.readyToRecord();
    }

    void show(const QImage &picture)
    {
        if (m_window == 0)
            m_window = m_painter->showWindow(picture, { 0, 0 });
        else
            m_painter->drawInWindow(m_window, picture, { 0, 0 });
    }

    void pass()
    {
        const auto record = VNBufferDiscr::createWithScreenImage(m_display.readFullScreen());
        record->setBufferTimestamp(m_time += 3000);
        m_manager.pushRecordBuffer(*record);
    }
    void runFloor() { m_floor.run(); }
    /// Begins the spool anew, so that a long run does not fill the disk.
    void restart()
    {
        m_manager.clear();
        m_manager.readyToRecord();
    }

private:
    std::unique_ptr<test::ScreenPainter> m_painter;
    test::ScreenPainter::Window m_window = 0;
    VNCGDisplay m_display;
    VNBufferMgr m_manager { 4 };
    Floor m_floor;
    std::uint64_t m_time = 0;
};

QImage shifted(const QImage &page, int rows)
{
    QImage picture(page.size(), page.format());
    for (int y = 0; y < page.height(); ++y)
        std::copy_n(page.constScanLine((y + rows) % page.height()), page.bytesPerLine(), picture.scanLine(y));
    return picture;
}

/// Takes turns: change, floor, pass.
void measure(benchmark::State &state, const std::function<void(Stage &, int)> &change)
{
    Stage stage;
    std::vector<double> floors;
    std::vector<double> passes;
    int turn = 0;
    change(stage, turn);
    stage.pass();
    for (auto _ : state) {
        change(stage, ++turn);
        floors.push_back(millisecondsOf([&] { stage.runFloor(); }));
        passes.push_back(millisecondsOf([&] { stage.pass(); }));
        state.SetIterationTime(passes.back() / 1000);
        if (turn % 200 == 0)
            stage.restart();
    }
    state.counters["floor_ms"] = median(floors);
    state.counters["pass_ms"] = median(passes);
    state.counters["pass/floor"] = median(passes) / median(floors);
}

/// Every row of the screen is another one than before.
void ChangingText(benchmark::State &state)
{
    const QImage page = test::textPage(screenSize, 1);
    measure(state, [&](Stage &stage, int turn) { stage.show(shifted(page, turn * 7)); });
}

void ChangingColours(benchmark::State &state)
{
    const QImage page = test::smoothPicture(screenSize);
    measure(state, [&](Stage &stage, int turn) { stage.show(shifted(page, turn * 7)); });
}

/// A window of 400 x 300 changes, the rest stands still.
void ChangingWindow(benchmark::State &state)
{
    const QImage page = test::textPage(screenSize, 1);
    measure(state, [&](Stage &stage, int turn) {
        QImage picture = page;
        const QImage patch = shifted(page, turn * 7).copy(0, 0, 400, 300);
        for (int y = 0; y < 300; ++y)
            std::copy_n(patch.constScanLine(y), 1600, picture.scanLine(400 + y) + 4 * 700);
        stage.show(picture);
    });
}

/// All is drawn again with the same pixels: the server reports damage, but nothing has changed.
void RepaintedPicture(benchmark::State &state)
{
    const QImage page = test::textPage(screenSize, 1);
    measure(state, [&](Stage &stage, int) { stage.show(page); });
}

/// Nothing is drawn.
void IdleScreen(benchmark::State &state)
{
    const QImage page = test::textPage(screenSize, 1);
    measure(state, [&](Stage &stage, int turn) {
        if (turn == 0)
            stage.show(page);
    });
}

BENCHMARK(ChangingText)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(150);
BENCHMARK(ChangingColours)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(150);
BENCHMARK(ChangingWindow)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(150);
BENCHMARK(RepaintedPicture)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(150);
BENCHMARK(IdleScreen)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(150);

} // namespace

int main(int argc, char **argv)
{
    const QTemporaryDir cache;
    qputenv("XDG_CACHE_HOME", cache.path().toUtf8());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    if (const QString reason = vornic::noDisplayReason(); !reason.isEmpty()) {
        std::fprintf(stderr, "%s\n", reason.toUtf8().constData());
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
