// vornic_show_scene <scene> [--fps N] [--seconds N] [--step N] [--below]
//
// Fills the screen of $DISPLAY with a scene for measurements and shows:
//   text     a still page of small text
//   counter  the same with a counter of 12 characters on it that runs on with every frame
//   typing   a terminal in which a character is typed every 3rd frame
//   scroll   a long page of text and pictures that scrolls by --step pixels a frame
//   desktop  a still page of which a small part changes every 6th frame
//   video    smooth colours that move over the whole screen
//   known    the bars that knownPatches() describes
//
// Everything is drawn beforehand into pixmaps of the server; a frame is one copy inside the server. Writes
// "ready" to standard output once the scene stands. Without --seconds it stays until it is told to end.
// --below puts the scene beneath all other windows.

#include "support/test_pictures.h"

#include <QCommandLineParser>
#include <QFont>
#include <QGuiApplication>
#include <QPainter>

#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <thread>

using namespace vornic::test;

namespace {

std::int16_t coordinate(int value)
{
    return static_cast<std::int16_t>(value);
}

std::uint16_t length(int value)
{
    return static_cast<std::uint16_t>(value);
}

/// A window over the whole screen and pixmaps to fill it from.
class Stage
{
public:
    explicit Stage(bool isBelow)
        : m_connection(xcb_connect(nullptr, nullptr))
    {
        if (!isUsable())
            return;
        m_screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
        m_context = xcb_generate_id(m_connection);
        const std::uint32_t noExposures = 0;
        xcb_create_gc(m_connection, m_context, m_screen->root, XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
        openWindow(isBelow);
    }
    ~Stage() { xcb_disconnect(m_connection); }
    Stage(const Stage &) = delete;
    Stage &operator=(const Stage &) = delete;

    [[nodiscard]] bool isUsable() const { return xcb_connection_has_error(m_connection) == 0; }
    [[nodiscard]] QSize size() const { return { m_screen->width_in_pixels, m_screen->height_in_pixels }; }

    [[nodiscard]] xcb_pixmap_t pixmapOf(const QImage &picture)
    {
        const xcb_pixmap_t pixmap = xcb_generate_id(m_connection);
        xcb_create_pixmap(m_connection,
                          m_screen->root_depth,
                          pixmap,
                          m_screen->root,
                          length(picture.width()),
                          length(picture.height()));
        constexpr int rowsAtOnce = 8;
        for (int row = 0; row < picture.height(); row += rowsAtOnce)
            put(picture.copy(0, row, picture.width(), std::min(rowsAtOnce, picture.height() - row)),
                pixmap,
                row);
        return pixmap;
    }

    /// Shows \a part of \a pixmap at \a position.
    void show(xcb_pixmap_t pixmap, const QRect &part, QPoint position = {})
    {
        xcb_copy_area(m_connection,
                      pixmap,
                      m_window,
                      m_context,
                      coordinate(part.x()),
                      coordinate(part.y()),
                      coordinate(position.x()),
                      coordinate(position.y()),
                      length(part.width()),
                      length(part.height()));
        xcb_flush(m_connection);
    }

    void sync()
    {
        std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    }

private:
    void openWindow(bool isBelow)
    {
        m_window = xcb_generate_id(m_connection);
        const std::uint32_t overrideRedirect = 1;
        xcb_create_window(m_connection,
                          XCB_COPY_FROM_PARENT,
                          m_window,
                          m_screen->root,
                          0,
                          0,
                          m_screen->width_in_pixels,
                          m_screen->height_in_pixels,
                          0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          XCB_COPY_FROM_PARENT,
                          XCB_CW_OVERRIDE_REDIRECT,
                          &overrideRedirect);
        const std::uint32_t mode = isBelow ? XCB_STACK_MODE_BELOW : XCB_STACK_MODE_ABOVE;
        xcb_configure_window(m_connection, m_window, XCB_CONFIG_WINDOW_STACK_MODE, &mode);
        xcb_map_window(m_connection, m_window);
    }

    void put(const QImage &strip, xcb_drawable_t drawable, int row)
    {
        const QImage pixels = strip.convertToFormat(m_screen->root_depth == 16       ? QImage::Format_RGB16
                                                        : m_screen->root_depth == 30 ? QImage::Format_RGB30
                                                                                     : QImage::Format_RGB32);
        xcb_put_image(m_connection,
                      XCB_IMAGE_FORMAT_Z_PIXMAP,
                      drawable,
                      m_context,
                      length(pixels.width()),
                      length(pixels.height()),
                      0,
                      coordinate(row),
                      0,
                      m_screen->root_depth,
                      static_cast<std::uint32_t>(pixels.sizeInBytes()),
                      pixels.constBits());
    }

    xcb_connection_t *m_connection;
    const xcb_screen_t *m_screen = nullptr;
    xcb_window_t m_window = 0;
    xcb_gcontext_t m_context = 0;
};

/// What stands on the stage at each frame.
class Scene
{
public:
    virtual ~Scene() = default;
    virtual void showFrame(Stage &stage, int frame) = 0;
};

class StillScene final : public Scene
{
public:
    StillScene(Stage &stage, const QImage &picture)
        : m_pixmap(stage.pixmapOf(picture))
    {
    }

    void showFrame(Stage &stage, int frame) override
    {
        if (frame == 0)
            stage.show(m_pixmap, QRect(QPoint(0, 0), stage.size()));
    }

private:
    xcb_pixmap_t m_pixmap;
};

class CounterScene final : public Scene
{
public:
    explicit CounterScene(Stage &stage)
        : m_page(stage.pixmapOf(textPage(stage.size(), 1)))
        , m_counters(stage.pixmapOf(counters()))
    {
    }

    void showFrame(Stage &stage, int frame) override
    {
        if (frame == 0)
            stage.show(m_page, QRect(QPoint(0, 0), stage.size()));
        const QRect counter(QPoint(0, frame % variants * counterSize.height()), counterSize);
        stage.show(m_counters, counter, QPoint(stage.size().width() / 2, stage.size().height() / 2));
    }

private:
    static constexpr QSize counterSize { 100, 18 };
    static constexpr int variants = 300;

    /// One below the other: minutes, seconds and milliseconds at 30 frames a second.
    [[nodiscard]] static QImage counters()
    {
        QImage picture(counterSize.width(), counterSize.height() * variants, QImage::Format_RGB32);
        picture.fill(Qt::white);
        QPainter painter(&picture);
        QFont font(QStringLiteral("DejaVu Sans Mono"));
        font.setPixelSize(13);
        painter.setFont(font);
        for (int i = 0; i < variants; ++i) {
            const QString text = QStringLiteral("00:00:%1.%2")
                                     .arg(i / 30, 2, 10, QLatin1Char('0'))
                                     .arg(i % 30 * 1000 / 30, 3, 10, QLatin1Char('0'));
            painter.drawText(2, i * counterSize.height() + 14, text);
        }
        return picture;
    }

    xcb_pixmap_t m_page;
    xcb_pixmap_t m_counters;
};

class TypingScene final : public Scene
{
public:
    explicit TypingScene(Stage &stage)
        : m_size(stage.size().width() / cell.width(), stage.size().height() / cell.height())
        , m_text(stage.pixmapOf(text(stage.size())))
        , m_cursor(stage.pixmapOf(filled(cell, Qt::lightGray)))
        , m_ground(stage.pixmapOf(filled(stage.size(), Qt::black)))
    {
    }

    void showFrame(Stage &stage, int frame) override
    {
        const int linesAbove = m_size.height() / 2;
        const int places = m_size.width() * (m_size.height() - linesAbove);
        const int typed = frame / framesBetween % places;
        if (typed == 0 && frame % framesBetween == 0) {
            const int rows = linesAbove * cell.height();
            const QSize all = stage.size();
            stage.show(m_text, QRect(0, 0, all.width(), rows));
            stage.show(m_ground, QRect(0, rows, all.width(), all.height() - rows), QPoint(0, rows));
        }
        if (frame % framesBetween != 0)
            return;
        const auto placeOf = [&](int index) {
            return QPoint(index % m_size.width() * cell.width(),
                          (linesAbove + index / m_size.width()) * cell.height());
        };
        stage.show(m_text, QRect(placeOf(typed), cell), placeOf(typed));
        if (typed + 1 < places)
            stage.show(m_cursor, QRect(QPoint(0, 0), cell), placeOf(typed + 1));
    }

private:
    static constexpr QSize cell { 8, 17 };
    static constexpr int framesBetween = 3;

    [[nodiscard]] static QImage filled(QSize size, const QColor &colour)
    {
        QImage picture(size, QImage::Format_RGB32);
        picture.fill(colour);
        return picture;
    }

    /// A character in each cell but every 7th.
    [[nodiscard]] static QImage text(QSize size)
    {
        QImage picture = filled(size, Qt::black);
        QPainter painter(&picture);
        QFont font(QStringLiteral("DejaVu Sans Mono"));
        font.setPixelSize(13);
        painter.setFont(font);
        painter.setPen(Qt::lightGray);
        int i = 0;
        for (int y = 0; y + cell.height() <= size.height(); y += cell.height())
            for (int x = 0; x + cell.width() <= size.width(); x += cell.width(), ++i)
                if (i % 7 != 0)
                    painter.drawText(x, y + 13, QChar(u'a' + i * 11 % 26));
        return picture;
    }

    QSize m_size; ///< in cells
    xcb_pixmap_t m_text;
    xcb_pixmap_t m_cursor;
    xcb_pixmap_t m_ground;
};

class ScrollScene final : public Scene
{
public:
    ScrollScene(Stage &stage, int step)
        : m_step(step)
        , m_screens(std::clamp(tallestPixmap / stage.size().height() - 1, 1, 4))
        , m_pixmap(stage.pixmapOf(endlessPage(stage.size())))
    {
    }

    void showFrame(Stage &stage, int frame) override
    {
        const QSize size = stage.size();
        const int y = static_cast<int>(qint64 { frame } * m_step % (m_screens * size.height()));
        stage.show(m_pixmap, QRect(QPoint(0, y), size));
    }

private:
    static constexpr int tallestPixmap = 32767;

    /// Its last screen repeats the first, so that it can start over unseen.
    [[nodiscard]] QImage endlessPage(QSize size) const
    {
        const QImage page = textPage(QSize(size.width(), size.height() * m_screens), 1);
        QImage endless = page.copy(0, 0, size.width(), size.height() * (m_screens + 1));
        for (int row = 0; row < size.height(); ++row)
            std::copy_n(page.constScanLine(row), page.bytesPerLine(), endless.scanLine(page.height() + row));
        return endless;
    }

    int m_step;
    int m_screens;
    xcb_pixmap_t m_pixmap;
};

class DesktopScene final : public Scene
{
public:
    explicit DesktopScene(Stage &stage)
        : m_page(stage.pixmapOf(textPage(stage.size(), 2)))
        , m_changes(stage.pixmapOf(textPage(QSize(changing.width(), changing.height() * variants), 3)))
    {
    }

    void showFrame(Stage &stage, int frame) override
    {
        if (frame == 0)
            stage.show(m_page, QRect(QPoint(0, 0), stage.size()));
        if (frame % framesBetween == 0) {
            const int variant = frame / framesBetween % variants;
            const QRect part(QPoint(0, variant * changing.height()), changing);
            stage.show(m_changes, part, QPoint(stage.size().width() / 3, stage.size().height() / 3));
        }
    }

private:
    static constexpr QSize changing { 320, 120 };
    static constexpr int variants = 8;
    static constexpr int framesBetween = 6;

    xcb_pixmap_t m_page;
    xcb_pixmap_t m_changes;
};

class VideoScene final : public Scene
{
public:
    explicit VideoScene(Stage &stage)
        : m_pixmap(stage.pixmapOf(smoothPicture(stage.size() + roam)))
    {
    }

    void showFrame(Stage &stage, int frame) override
    {
        const double phase = frame / 40.0;
        const auto offset
            = [](double turn, int range) { return static_cast<int>((std::sin(turn) + 1) / 2 * range); };
        const QPoint from(offset(phase, roam.width()), offset(phase * 1.37 + 1, roam.height()));
        stage.show(m_pixmap, QRect(from, stage.size()));
    }

private:
    static constexpr QSize roam { 640, 480 };

    xcb_pixmap_t m_pixmap;
};

std::unique_ptr<Scene> sceneNamed(const QString &name, Stage &stage, int step)
{
    if (name == QLatin1String("text"))
        return std::make_unique<StillScene>(stage, textPage(stage.size(), 1));
    if (name == QLatin1String("known"))
        return std::make_unique<StillScene>(stage, knownPicture(stage.size()));
    if (name == QLatin1String("counter"))
        return std::make_unique<CounterScene>(stage);
    if (name == QLatin1String("typing"))
        return std::make_unique<TypingScene>(stage);
    if (name == QLatin1String("scroll"))
        return std::make_unique<ScrollScene>(stage, step);
    if (name == QLatin1String("desktop"))
        return std::make_unique<DesktopScene>(stage);
    if (name == QLatin1String("video"))
        return std::make_unique<VideoScene>(stage);
    return nullptr;
}

/// Shows one frame after the other until \a seconds have passed; 0 means for ever.
void play(Scene &scene, Stage &stage, double fps, double seconds)
{
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    for (int frame = 0; stage.isUsable(); ++frame) {
        scene.showFrame(stage, frame);
        if (frame == 0) {
            stage.sync();
            std::puts("ready");
            std::fflush(stdout);
        }
        const std::chrono::duration<double> due((frame + 1) / fps);
        if (seconds > 0 && due.count() > seconds)
            break;
        std::this_thread::sleep_until(start + std::chrono::duration_cast<Clock::duration>(due));
    }
}

} // namespace

int main(int argc, char *argv[])
{
    // Only fonts and painting are used of it, which need no window system.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addPositionalArgument("scene", "text, counter, typing, scroll, desktop, video or known");
    parser.addOptions({ { "fps", "Frames a second.", "number", "30" },
                        { "seconds", "How long it is shown; 0: until it is told to end.", "number", "0" },
                        { "step", "Pixels that scroll moves by in a frame.", "number", "8" },
                        { "below", "Beneath all other windows." } });
    parser.addHelpOption();
    parser.process(application);

    Stage stage(parser.isSet("below"));
    if (!stage.isUsable()) {
        std::fputs("vornic_show_scene: cannot connect to the X server\n", stderr);
        return 1;
    }
    const double fps = parser.value("fps").toDouble();
    const auto scene = sceneNamed(parser.positionalArguments().value(0), stage, parser.value("step").toInt());
    if (!scene || fps <= 0) {
        std::fputs(
            "vornic_show_scene: name one of text, counter, typing, scroll, desktop, video, known, and an "
            "fps above 0\n",
            stderr);
        return 2;
    }
    play(*scene, stage, fps, parser.value("seconds").toDouble());
    return 0;
}
