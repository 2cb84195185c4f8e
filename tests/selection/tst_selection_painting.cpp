#include "controls/skin_colors.h"
#include "selection/selection_painting.h"

#include <QGuiApplication>
#include <QPainter>

#include <gtest/gtest.h>

namespace vornic {
namespace {

const QString help = QStringLiteral("Drag a rectangle, or click a window.");
const QColor edgeOfLens = skin::value();

/// A display of 800 x 600 points at GetParam() pixels each; every pixel has a colour of its own in its 16 x 16.
class SelectionPicture : public testing::TestWithParam<int>
{
protected:
    static QImage stillOf(QSize size)
    {
        QImage picture(size, QImage::Format_RGB32);
        for (int y = 0; y < size.height(); ++y)
            for (int x = 0; x < size.width(); ++x)
                picture.setPixelColor(x, y, colorAt({ x, y }));
        return picture;
    }
    static QColor colorAt(QPoint pixel)
    {
        return { 15 + pixel.x() % 16 * 16, 15 + pixel.y() % 16 * 16, 200 };
    }
    /// \a color beneath black of \a alpha, within what rounding leaves.
    static bool isDimmed(const QColor &color, const QColor &from, int alpha)
    {
        const auto isPart
            = [&](int part, int whole) { return std::abs(part - whole * (255 - alpha) / 255) <= 2; };
        return isPart(color.red(), from.red()) && isPart(color.green(), from.green())
            && isPart(color.blue(), from.blue());
    }
    [[nodiscard]] QRect scaled(const QRect &points) const
    {
        return { points.topLeft() * scale, points.size() * scale };
    }
    [[nodiscard]] QImage painted(const SelectionLook &look) const
    {
        QImage picture(still.size(), QImage::Format_RGB32);
        picture.fill(Qt::magenta);
        QPainter painter(&picture);
        painting.paint(painter, look);
        return picture;
    }

    int scale = GetParam();
    const QImage still = stillOf(QSize(800, 600) * scale);
    const SelectionPainting painting { still, static_cast<double>(scale), QGuiApplication::font(), help };
    const QRect display { QPoint(), still.size() };
};

TEST_P(SelectionPicture, ShowsTheRectangleBrightAndTheRestDark)
{
    const QRect rectangle = scaled({ 300, 200, 200, 100 });
    const QImage picture = painted({ .rectangle = rectangle });
    EXPECT_EQ(picture.copy(rectangle), still.copy(rectangle)) << "pixel by pixel, with nothing over it";
    for (const QPoint dark : { QPoint(10, 10), rectangle.topLeft() - QPoint(5, -20) * scale })
        EXPECT_TRUE(isDimmed(picture.pixelColor(dark), colorAt(dark), 140)) << dark.x();
    EXPECT_EQ(picture.pixelColor(rectangle.topLeft() - QPoint(1, 1)), skin::focus());
    EXPECT_EQ(picture.pixelColor(rectangle.bottomRight() + QPoint(2 * scale, 1)), skin::focus());
    EXPECT_NE(picture.pixelColor(rectangle.bottomRight() + QPoint(2 * scale + 1, 0)), skin::focus());
}

TEST_P(SelectionPicture, FrameOfTheWholeDisplayIsSeen)
{
    const QImage picture = painted({ .rectangle = display });
    for (const QPoint corner : { display.topLeft(), display.bottomRight() })
        EXPECT_EQ(picture.pixelColor(corner), skin::focus());
    EXPECT_NE(picture.pixelColor(2 * scale, 100), skin::focus());
}

TEST_P(SelectionPicture, WindowUnderThePointerIsLessDark)
{
    const QRect window = scaled({ 100, 100, 300, 300 });
    const SelectionLook look { .rectangle = scaled({ 300, 200, 200, 100 }), .window = window };
    const QImage picture = painted(look);
    const QPoint inside = window.topLeft() + QPoint(20, 20);
    EXPECT_TRUE(isDimmed(picture.pixelColor(inside), colorAt(inside), 60));
    EXPECT_EQ(picture.pixelColor(window.topLeft() - QPoint(1, 1)), skin::value());
    const QPoint common = scaled({ 320, 220, 1, 1 }).topLeft();
    EXPECT_EQ(picture.pixelColor(common), colorAt(common)) << "the rectangle stays bright";
}

TEST_P(SelectionPicture, LensMagnifiesThePixelsAroundThePointer)
{
    const QPoint pointer = scaled({ 200, 300, 1, 1 }).topLeft() + QPoint(1, 1);
    const SelectionLook look { .rectangle = scaled({ 500, 100, 100, 100 }),
                               .window = {},
                               .pointer = pointer };
    const QRect lens = painting.layout(look).lens;
    EXPECT_EQ(painting.zoom(), 8 * scale);
    EXPECT_EQ(lens.size(), QSize(17 * 8 + 4, 17 * 8 + 4) * scale);
    const QImage picture = painted(look);
    const QPoint inside = lens.topLeft() + QPoint(2, 2) * scale;
    const auto middleOf = [&](int column, int row) {
        return inside + QPoint(column, row) * painting.zoom() + QPoint(4, 4) * scale;
    };
    // Column and row 8 are the pointer's own; those beside it have its mark on their edges only.
    for (const QPoint pixel : { QPoint(0, 0), QPoint(8, 8), QPoint(7, 8), QPoint(9, 9), QPoint(16, 16) })
        EXPECT_EQ(picture.pixelColor(middleOf(pixel.x(), pixel.y())), colorAt(pointer + pixel - QPoint(8, 8)))
            << pixel.x() << ' ' << pixel.y();
    EXPECT_EQ(picture.pixelColor(lens.topLeft()), edgeOfLens);
    EXPECT_EQ(picture.pixelColor(inside + QPoint(8, 8) * painting.zoom() - QPoint(1, 1)), skin::value());
}

TEST_P(SelectionPicture, LensIsDarkBeyondTheDisplay)
{
    const SelectionLook look { .rectangle = scaled({ 300, 200, 200, 100 }),
                               .window = {},
                               .pointer = QPoint(0, 0) };
    const QRect lens = painting.layout(look).lens;
    const QImage picture = painted(look);
    const QPoint inside = lens.topLeft() + QPoint(2, 2) * scale;
    EXPECT_EQ(picture.pixelColor(inside + QPoint(7, 7) * painting.zoom() - QPoint(4, 4) * scale),
              skin::recess());
    EXPECT_EQ(picture.pixelColor(inside + QPoint(8, 8) * painting.zoom() + QPoint(4, 4) * scale),
              colorAt({ 0, 0 }));
}

TEST_P(SelectionPicture, NothingLeavesTheDisplayOrCoversAnotherThing)
{
    for (const QRect &points : { QRect(300, 200, 200, 100),
                                 QRect(0, 0, 60, 60),
                                 QRect(740, 540, 60, 60),
                                 QRect(0, 0, 800, 300),
                                 QRect(0, 300, 800, 300),
                                 QRect(0, 0, 400, 600) }) {
        const QRect rectangle = scaled(points);
        for (const QPoint pointer : { rectangle.topLeft(),
                                      rectangle.bottomRight(),
                                      QPoint(0, 0),
                                      QPoint(400, 300) * scale,
                                      QPoint(799, 599) * scale,
                                      QPoint(400, 580) * scale,
                                      QPoint(400, 20) * scale }) {
            const SelectionLayout places
                = painting.layout({ .rectangle = rectangle, .window = {}, .pointer = pointer });
            SCOPED_TRACE(testing::Message() << points.x() << ' ' << points.y() << " pointer " << pointer.x()
                                            << ' ' << pointer.y());
            for (const QRect &place : { places.label, places.help, places.lens }) {
                EXPECT_TRUE(display.contains(place));
                EXPECT_FALSE(place.contains(pointer));
            }
            EXPECT_FALSE(places.label.intersects(rectangle));
            EXPECT_FALSE(places.label.intersects(places.help));
            EXPECT_FALSE(places.lens.intersects(places.label));
            EXPECT_FALSE(places.lens.intersects(places.help));
        }
    }
}

TEST_P(SelectionPicture, LabelOfTheWholeDisplayStandsOnIt)
{
    const SelectionLayout places
        = painting.layout({ .rectangle = display, .window = {}, .pointer = QPoint(400, 300) * scale });
    EXPECT_TRUE(display.contains(places.label));
    EXPECT_GT(places.label.width(), 60 * scale) << "as wide as \"800 × 600\" at this scale";
}

TEST_P(SelectionPicture, ChangedRegionIsWhatLooksOtherwise)
{
    const std::vector<SelectionLook> looks {
        { .rectangle = scaled({ 300, 200, 200, 100 }) },
        { .rectangle = scaled({ 300, 200, 201, 100 }) },
        { .rectangle = scaled({ 300, 200, 201, 100 }), .window = {}, .pointer = QPoint(50, 50) * scale },
        { .rectangle = scaled({ 300, 200, 201, 100 }),
          .window = scaled({ 10, 10, 100, 400 }),
          .pointer = QPoint(51, 50) * scale },
        { .rectangle = scaled({ 0, 0, 800, 560 }), .window = {}, .pointer = QPoint(51, 50) * scale },
        { .rectangle = scaled({ 0, 40, 800, 560 }), .window = {}, .pointer = QPoint(400, 590) * scale },
    };
    for (std::size_t i = 0; i + 1 < looks.size(); ++i) {
        SCOPED_TRACE(i);
        const QRegion changed = painting.changed(looks[i], looks[i + 1]);
        QImage picture = painted(looks[i]);
        QPainter painter(&picture);
        painter.setClipRegion(changed);
        painting.paint(painter, looks[i + 1]);
        painter.end();
        EXPECT_EQ(picture, painted(looks[i + 1]));
        EXPECT_TRUE(painting.changed(looks[i], looks[i]).isEmpty());
    }
    EXPECT_FALSE(painting.changed(looks[2], looks[1]).contains(scaled({ 400, 250, 1, 1 }).topLeft()))
        << "inside the rectangle nothing has changed";
}

INSTANTIATE_TEST_SUITE_P(Scales, SelectionPicture, testing::Values(1, 2));

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
