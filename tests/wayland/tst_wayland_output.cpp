#include "wayland/wayland_output.h"

#include <gtest/gtest.h>

namespace vornic {
namespace {

WaylandOutput turned(int transform)
{
    WaylandOutput output;
    output.mode = QSize(1920, 1080);
    output.transform = transform;
    return output;
}

TEST(WaylandOutput, AQuarterTurnSwapsWidthAndHeight)
{
    for (const int upright : { 0, 2, 4, 6 })
        EXPECT_EQ(turned(upright).pixels(), QSize(1920, 1080)) << upright;
    for (const int onItsSide : { 1, 3, 5, 7 })
        EXPECT_EQ(turned(onItsSide).pixels(), QSize(1080, 1920)) << onItsSide;
}

TEST(WaylandOutput, TheFactorIsOfThePixelsAsTheyAreSeen)
{
    WaylandOutput output = turned(1);
    output.logical = QRect(0, 0, 720, 1280);
    EXPECT_DOUBLE_EQ(output.factor(), 1.5);
    output.logical = QRect(0, 0, 719, 1279);
    EXPECT_DOUBLE_EQ(output.factor(), 1.5) << "a logical size that was cut to whole numbers";
    output.logical = QRect();
    EXPECT_DOUBLE_EQ(output.factor(), 1) << "not known";
}

WaylandOutput monitor(const QString &name, QSize pixels, QPoint place, double factor = 1)
{
    WaylandOutput output;
    output.name = name;
    output.mode = pixels;
    output.logical = QRect(place, (QSizeF(pixels) / factor).toSize());
    return output;
}

QString shown(const std::vector<WaylandOutput> &outputs, QSize pixels, std::optional<QPoint> position = {})
{
    const auto found = outputShown(outputs, pixels, position);
    return found ? found->name : "none";
}

TEST(WaylandOutput, APictureShowsTheOneOfItsSize)
{
    const std::vector outputs { monitor("A", { 1920, 1080 }, { 0, 0 }),
                                monitor("B", { 2560, 1440 }, { 1920, 0 }, 1.25) };
    EXPECT_EQ(shown(outputs, { 1920, 1080 }), "A");
    EXPECT_EQ(shown(outputs, { 2560, 1440 }), "B");
    EXPECT_EQ(shown(outputs, { 2560, 1440 }, QPoint(0, 0)), "B") << "some tell the origin of all";
    EXPECT_EQ(shown(outputs, { 800, 600 }), "none");
    EXPECT_EQ(shown({}, { 800, 600 }, QPoint(0, 0)), "none");
}

TEST(WaylandOutput, OfSeveralOfOneSizeThePictureShowsTheOneAtItsPlace)
{
    const std::vector outputs { monitor("left", { 1920, 1080 }, { 0, 0 }),
                                monitor("right", { 1920, 1080 }, { 1920, 0 }),
                                monitor("top", { 2560, 1440 }, { 0, -1440 }) };
    EXPECT_EQ(shown(outputs, { 1920, 1080 }, QPoint(1920, 0)), "right");
    EXPECT_EQ(shown(outputs, { 1920, 1080 }, QPoint(0, 0)), "left");
    EXPECT_EQ(shown(outputs, { 1920, 1080 }), "left") << "the main one, where nothing is told";
    EXPECT_EQ(shown(outputs, { 1920, 1080 }, QPoint(77, 77)), "left");
    EXPECT_EQ(shown(outputs, { 1280, 720 }, QPoint(0, -1440)), "top") << "a picture that was made smaller";
}

TEST(WaylandOutput, OneIsFoundByItsName)
{
    const std::vector outputs { monitor("A", { 1920, 1080 }, { 0, 0 }), monitor("", { 10, 10 }, { 0, 0 }) };
    EXPECT_EQ(outputNamed(outputs, "A")->mode, QSize(1920, 1080));
    EXPECT_FALSE(outputNamed(outputs, "B"));
    EXPECT_FALSE(outputNamed(outputs, "")) << "which is no name";
}

TEST(WaylandOutput, TheMainOneLiesAtTheOrigin)
{
    EXPECT_FALSE(mainOutput({}));
    WaylandOutput right;
    right.name = "DP-1";
    right.logical = QRect(1280, 0, 1280, 720);
    WaylandOutput left;
    left.name = "DP-2";
    left.logical = QRect(0, 0, 1280, 720);
    EXPECT_EQ(mainOutput({ right, left })->name, "DP-2");
    EXPECT_EQ(mainOutput({ right })->name, "DP-1") << "none lies there";
}

} // namespace
} // namespace vornic
