// vornic_show_counter [--fps N] [--strip]
//
// Fills the screen of $DISPLAY with a counter that a script can read from a movie, and with noise that fills a spool; with
// --strip, a window of 640 x 40 pixels in the upper left corner with the counter alone.
//
// The upper quarter holds two rows of 20 blocks: the number's bits, the highest first, white for 1, and below them
// their opposites. The picture is changed at once, so that no grab can see half a number. A line is written to
// standard output for each number once the server shows it: the number, and the monotonic clock's nanoseconds before
// and after.

#include "support/test_pictures.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <xcb/xcb.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <thread>

using namespace vornic::test;

namespace {

using Clock = std::chrono::steady_clock;

constexpr int bits = 20;
constexpr int stripWidth = 640;
constexpr int stripHeight = 40;

std::int16_t coordinate(int value)
{
    return static_cast<std::int16_t>(value);
}

std::uint16_t length(int value)
{
    return static_cast<std::uint16_t>(value);
}

/// A window over the whole screen, or a strip of it, that shows numbers. Made and used by main().
class CounterStage
{
public:
    explicit CounterStage(bool isStrip)
        : m_connection(xcb_connect(nullptr, nullptr))
    {
        if (!isUsable())
            return;
        m_screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
        m_width = isStrip ? stripWidth : m_screen->width_in_pixels;
        m_height = isStrip ? 4 * stripHeight : m_screen->height_in_pixels;
        m_context = xcb_generate_id(m_connection);
        const std::uint32_t noExposures = 0;
        xcb_create_gc(m_connection, m_context, m_screen->root, XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
        openWindow(isStrip ? stripHeight : m_height);
        m_picture = pixmap(m_height);
        m_noise = pixmap(2 * m_height);
        fillNoise();
    }
    ~CounterStage() { xcb_disconnect(m_connection); }
    CounterStage(const CounterStage &) = delete;
    CounterStage &operator=(const CounterStage &) = delete;

    [[nodiscard]] bool isUsable() const { return xcb_connection_has_error(m_connection) == 0; }

    void show(std::uint32_t number)
    {
        const int top = m_height / 4;
        copy(m_noise, m_picture, static_cast<int>(number * 37 % static_cast<std::uint32_t>(m_height)), top);
        for (int bit = 0; bit < bits; ++bit) {
            const bool isSet = (number >> static_cast<unsigned>(bits - 1 - bit) & 1U) != 0;
            fill(bit, 0, isSet);
            fill(bit, top / 2, !isSet);
        }
        copy(m_picture, m_window, 0, 0);
        std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    }

private:
    /// What of the picture lies below \a height is not seen.
    void openWindow(int height)
    {
        m_window = xcb_generate_id(m_connection);
        const std::uint32_t overrideRedirect = 1;
        xcb_create_window(m_connection,
                          XCB_COPY_FROM_PARENT,
                          m_window,
                          m_screen->root,
                          0,
                          0,
                          length(m_width),
                          length(height),
                          0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          XCB_COPY_FROM_PARENT,
                          XCB_CW_OVERRIDE_REDIRECT,
                          &overrideRedirect);
        xcb_map_window(m_connection, m_window);
    }

    [[nodiscard]] xcb_pixmap_t pixmap(int height)
    {
        const xcb_pixmap_t pixmap = xcb_generate_id(m_connection);
        xcb_create_pixmap(
            m_connection, m_screen->root_depth, pixmap, m_screen->root, length(m_width), length(height));
        return pixmap;
    }

    void fillNoise()
    {
        constexpr int rowsAtOnce = 8;
        const QImage noise
            = noisePicture(QSize(m_width, 2 * m_height), 1).convertToFormat(QImage::Format_RGB32);
        for (int row = 0; row < noise.height(); row += rowsAtOnce) {
            const int rows = std::min(rowsAtOnce, noise.height() - row);
            xcb_put_image(m_connection,
                          XCB_IMAGE_FORMAT_Z_PIXMAP,
                          m_noise,
                          m_context,
                          length(m_width),
                          length(rows),
                          0,
                          coordinate(row),
                          0,
                          m_screen->root_depth,
                          static_cast<std::uint32_t>(rows * noise.bytesPerLine()),
                          noise.constScanLine(row));
        }
    }

    /// What lies below \a from, to what lies below \a top.
    void copy(xcb_drawable_t source, xcb_drawable_t target, int from, int top)
    {
        xcb_copy_area(m_connection,
                      source,
                      target,
                      m_context,
                      0,
                      coordinate(from),
                      0,
                      coordinate(top),
                      length(m_width),
                      length(m_height - top));
    }

    void fill(int bit, int y, bool isWhite)
    {
        const std::uint32_t colour = isWhite ? 0xFFFFFF : 0;
        xcb_change_gc(m_connection, m_context, XCB_GC_FOREGROUND, &colour);
        const int left = m_width * bit / bits;
        const xcb_rectangle_t block { coordinate(left),
                                      coordinate(y),
                                      length(m_width * (bit + 1) / bits - left),
                                      length(m_height / 4 / 2) };
        xcb_poly_fill_rectangle(m_connection, m_picture, m_context, 1, &block);
    }

    xcb_connection_t *m_connection;
    const xcb_screen_t *m_screen = nullptr;
    int m_width = 0;
    int m_height = 0;
    xcb_window_t m_window = 0;
    xcb_pixmap_t m_picture = 0; ///< what is shown next
    xcb_pixmap_t m_noise = 0;
    xcb_gcontext_t m_context = 0;
};

long long nanoseconds()
{
    return std::chrono::nanoseconds(Clock::now().time_since_epoch()).count();
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addOption({ "fps", "Numbers a second.", "number", "30" });
    parser.addOption({ "strip", "The counter alone, in the upper left corner." });
    parser.addHelpOption();
    parser.process(application);
    const double fps = parser.value("fps").toDouble();

    CounterStage stage(parser.isSet("strip"));
    if (!stage.isUsable() || fps <= 0) {
        std::fputs("vornic_show_counter: needs an X server, and an fps above 0\n", stderr);
        return 1;
    }
    const auto start = Clock::now();
    for (std::uint32_t number = 1; stage.isUsable(); ++number) {
        const long long before = nanoseconds();
        stage.show(number);
        std::printf("%u %lld %lld\n", number, before, nanoseconds());
        std::fflush(stdout);
        const std::chrono::duration<double> due(number / fps);
        std::this_thread::sleep_until(start + std::chrono::duration_cast<Clock::duration>(due));
    }
    return 0;
}
