#include "geometry/y_up.h"
#include "options/VNLogoContext.h"
#include "overlay/overlay_geometry.h"
#include "overlay/overlay_painting.h"
#include "overlay_main.h"

#include <QPainter>

#include <limits>

namespace vornic {
namespace {

constexpr QRectF bounds(0, 0, 216, 116);
const QColor nothing(0, 0, 0, 0);
const QColor white(255, 255, 255);
const QColor lightGrey(204, 204, 204);
const QColor cyan(0, 204, 255);
const QColor hairline(0, 0, 0, 128);

class OverlayPainting : public testing::TestWithParam<int>
{
protected:
    /// What the overlay looks like at GetParam() device pixels a point, on a surface full of garbage.
    QImage painted(const OverlayLook &look, const VNLogoContext *logo = nullptr)
    {
        QImage image(look.bounds.size().toSize() * ratio, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::magenta);
        QPainter painter(&image);
        painter.scale(ratio, ratio);
        flipPainter(painter, look.bounds.height());
        paintOverlay(painter, look, logo);
        return image;
    }
    /// In the middle of the point's pixels; y up.
    [[nodiscard]] QColor at(const QImage &image, int x, int y) const
    {
        return image.pixelColor(x * ratio + ratio / 2, image.height() - y * ratio - 1 - ratio / 2);
    }

    int ratio = GetParam();
};

/// A few parts in 255 off, as premultiplied colours of so little alpha are.
bool isTint(const QColor &colour)
{
    return colour.alpha() == 33 && std::abs(colour.green() - 204) < 8 && colour.blue() > 247
        && colour.red() < 8;
}

TEST_P(OverlayPainting, IdleHasTintFrameAndHandles)
{
    const QImage image = painted({ bounds });
    EXPECT_EQ(image.pixelColor(0, 0), nothing) << "the window has a hole there";
    EXPECT_EQ(at(image, 10, 0), nothing);
    EXPECT_EQ(at(image, 10, 1), hairline) << "so that the frame is seen on white";
    EXPECT_EQ(at(image, 50, 2), lightGrey);
    EXPECT_EQ(at(image, 50, 5), lightGrey);
    EXPECT_TRUE(isTint(at(image, 50, 6)));
    EXPECT_TRUE(isTint(at(image, 108, 58))) << "the centre handle is not drawn";
    EXPECT_EQ(at(image, 210, 50), lightGrey);
    EXPECT_EQ(at(image, 213, 50), lightGrey);
    EXPECT_TRUE(isTint(at(image, 209, 50)));
    EXPECT_EQ(at(image, 214, 50), hairline);
    EXPECT_EQ(at(image, 215, 50), nothing);
    for (int region = 0; region < 8; ++region) {
        const QPoint middle = hotRegion(bounds, region)->boundingRect().center().toPoint();
        EXPECT_EQ(at(image, middle.x(), middle.y()), cyan) << region;
        EXPECT_EQ(at(image, middle.x() - 1, middle.y() - 1), cyan) << region;
    }
    EXPECT_EQ(at(image, 0, 0), nothing) << "handles are round";
}

TEST_P(OverlayPainting, FrameIsBrighterWithTheKeyboardFocus)
{
    EXPECT_EQ(at(painted({ .bounds = bounds, .isKey = true }), 50, 3), white);
    EXPECT_EQ(at(painted({ .bounds = bounds, .isKey = false }), 50, 3), lightGrey);
}

TEST_P(OverlayPainting, RecordingLeavesOnlyTheFrame)
{
    const QImage image = painted({ .bounds = bounds, .isRecording = true, .isKey = true });
    EXPECT_EQ(at(image, 50, 3), white);
    EXPECT_EQ(at(image, 3, 3), white) << "no handle over the corner, no hole where two bars meet";
    EXPECT_EQ(at(image, 1, 112), hairline) << "no handle outside the frame";
    EXPECT_EQ(at(image, 0, 112), nothing);
    EXPECT_EQ(at(image, 1, 1), hairline) << "once at the corners";
    EXPECT_EQ(at(image, 7, 58), nothing) << "no handle inside it";
    EXPECT_EQ(at(image, 50, 6), nothing);
    EXPECT_EQ(at(image, 108, 58), nothing);
    // Nothing at all where pictures are taken.
    const QRect recorded(8 * ratio, 8 * ratio, 200 * ratio, 100 * ratio);
    QImage none(recorded.size(), image.format());
    none.fill(Qt::transparent);
    EXPECT_EQ(image.copy(recorded), none);
}

TEST_P(OverlayPainting, TheFrameIsDashedWhileTheRecordingIsPaused)
{
    OverlayLook look { .bounds = bounds, .isRecording = true };
    const QImage whole = painted(look);
    look.isPaused = true;
    const QImage dashed = painted(look);
    int dashes = 0;
    int gaps = 0;
    for (int x = 2; x < 214; ++x) {
        const bool isGap = at(dashed, x, 3) == nothing;
        (isGap ? gaps : dashes) += 1;
        EXPECT_EQ(at(dashed, x, 3), isGap ? nothing : lightGrey) << x;
        EXPECT_EQ(at(whole, x, 3), lightGrey) << x;
        EXPECT_EQ(at(dashed, x, 1), hairline) << "the outline stays";
    }
    EXPECT_GT(gaps, 60);
    EXPECT_GT(dashes, 100);
    int upright = 0;
    for (int y = 8; y < 108; ++y)
        upright += at(dashed, 3, y) == nothing ? 1 : 0;
    EXPECT_GT(upright, 30);
}

/// Windows hold a part of a large overlay: the dashes do not depend on which.
TEST_P(OverlayPainting, DashesAreTheSameInEveryPart)
{
    OverlayLook look { .bounds = bounds, .isRecording = true };
    look.isPaused = true;
    const QImage whole = painted(look);
    look.held = QRect(50, 56, 90, 60);
    const QImage part = painted(look);
    for (int x = 50; x < 140; ++x)
        EXPECT_EQ(at(part, x, 3), at(whole, x, 3)) << x;
}

TEST_P(OverlayPainting, LogoLiesOverEverythingWhileItIsOn)
{
    VNLogoContext logo;
    logo.setLogoType(1);
    QImage red(20, 10, QImage::Format_RGB32);
    red.fill(Qt::red);
    logo.setNSImage(red);
    logo.setLogoPosition({ 0, 0 });
    EXPECT_EQ(at(painted({ bounds }, &logo), 4, 4), cyan);
    logo.setLogoValidate(true);
    for (const bool isRecording : { false, true }) {
        const QImage image = painted({ .bounds = bounds, .isRecording = isRecording }, &logo);
        EXPECT_EQ(at(image, 0, 0), QColor(Qt::red));
        EXPECT_EQ(at(image, 4, 4), QColor(Qt::red));
        EXPECT_EQ(at(image, 19, 9), QColor(Qt::red));
        EXPECT_NE(at(image, 20, 9), QColor(Qt::red));
        EXPECT_NE(at(image, 19, 10), QColor(Qt::red));
    }
}

INSTANTIATE_TEST_SUITE_P(Ratios, OverlayPainting, testing::Values(1, 2));

/// The overlay without translucency: what is painted over garbage, and the shape cut out of it.
class ShapedOverlay : public testing::Test
{
protected:
    void paint(const OverlayLook &look, const VNLogoContext *logo = nullptr)
    {
        const LogoStencil stencil = stencilOf(logo, look.bounds);
        shape = overlayShape(look, stencil);
        image = QImage(look.bounds.size().toSize(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        paintShapedOverlay(painter, look, stencil);
    }
    /// Every pixel of the shape is painted opaque, and none beside it.
    [[nodiscard]] bool isShapeAllThatIsPainted() const
    {
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (image.pixelColor(x, y).alpha() != (shape.contains(QPoint(x, y)) ? 255 : 0))
                    return false;
        return true;
    }
    [[nodiscard]] qint64 pixelsIn(const QRect &rectangle) const
    {
        qint64 count = 0;
        for (const QRect &part : shape.intersected(rectangle))
            count += qint64 { part.width() } * part.height();
        return count;
    }
    /// A white square with its lower left at (50, 40).
    static void useSquare(VNLogoContext &logo, QSize size = { 40, 40 })
    {
        QImage square(size, QImage::Format_RGB32);
        square.fill(Qt::white);
        logo.setLogoValidate(true);
        logo.setLogoType(1);
        logo.setNSImage(square);
        logo.setLogoPosition({ 50, 40 });
    }

    QRegion shape;
    QImage image;
    const QRect recorded { 8, 8, 200, 100 };
};

TEST_F(ShapedOverlay, IdleShowsFrameAndHandlesButNoTint)
{
    paint({ .bounds = bounds, .isTranslucent = false });
    EXPECT_TRUE(isShapeAllThatIsPainted());
    EXPECT_FALSE(shape.contains(QPoint(100, 50)));
    EXPECT_EQ(image.pixelColor(50, 3), lightGrey);
    EXPECT_EQ(image.pixelColor(4, 4), cyan);
    EXPECT_EQ(image.pixelColor(211, 58), cyan);
    EXPECT_FALSE(shape.contains(QPoint(0, 0)));
    EXPECT_EQ(shape.boundingRect(), bounds.toRect());
}

TEST_F(ShapedOverlay, RecordingShowsNothingInsideTheRectangle)
{
    paint({ .bounds = bounds, .isRecording = true, .isKey = true, .isTranslucent = false });
    EXPECT_TRUE(isShapeAllThatIsPainted());
    EXPECT_FALSE(shape.intersects(recorded));
    EXPECT_EQ(shape, QRegion(1, 1, 214, 114) - QRegion(6, 6, 204, 104));
    EXPECT_EQ(image.pixelColor(4, 4), white);
    EXPECT_EQ(image.pixelColor(1, 50), QColor(64, 64, 64)) << "so that it is seen on white";
    EXPECT_EQ(image.pixelColor(50, 114), QColor(64, 64, 64));
}

TEST_F(ShapedOverlay, ADashedFrameIsCutOut)
{
    OverlayLook look { .bounds = bounds, .isRecording = true, .isTranslucent = false };
    paint(look);
    const QRegion whole = shape;
    look.isPaused = true;
    paint(look);
    EXPECT_TRUE(isShapeAllThatIsPainted());
    const QRegion gaps = whole - shape;
    EXPECT_TRUE((shape - whole).isEmpty());
    EXPECT_GT(gaps.rectCount(), 10);
    EXPECT_TRUE((gaps - (QRegion(2, 2, 212, 112) - QRegion(6, 6, 204, 104))).isEmpty())
        << "the outline stays";
}

TEST_F(ShapedOverlay, LogoIsCutOutPixelByPixel)
{
    VNLogoContext logo;
    logo.setLogoValidate(true);
    logo.setLogoPosition({ 50, 40 });
    logo.setLogoText("I O");
    logo.setLogoRotation(20);
    paint({ .bounds = bounds, .isRecording = true, .isTranslucent = false }, &logo);
    EXPECT_TRUE(isShapeAllThatIsPainted()) << "soft edges become hard ones, not dark ones";
    EXPECT_GT(pixelsIn(recorded), 50);
    EXPECT_LT(pixelsIn(recorded), 400);
    logo.setLogoValidate(false);
    paint({ .bounds = bounds, .isRecording = true, .isTranslucent = false }, &logo);
    EXPECT_EQ(pixelsIn(recorded), 0);
}

TEST_F(ShapedOverlay, RowsStandForOpacity)
{
    VNLogoContext logo;
    useSquare(logo);
    const OverlayLook look { .bounds = bounds, .isRecording = true, .isTranslucent = false };
    const std::pair<int, int> rowsOfForty[] { { 0, 0 }, { 64, 10 }, { 128, 20 }, { 192, 30 }, { 255, 40 } };
    for (const auto &[opacity, rows] : rowsOfForty) {
        logo.setLogoTransparency(opacity);
        paint(look, &logo);
        EXPECT_EQ(pixelsIn(recorded), rows * 40) << opacity;
        EXPECT_TRUE(isShapeAllThatIsPainted());
    }
    logo.setLogoTransparency(128);
    paint(look, &logo);
    for (int y = 37; y < 75; ++y)
        EXPECT_NE(shape.contains(QPoint(60, y)), shape.contains(QPoint(60, y + 1))) << "every other row";
}

TEST_F(ShapedOverlay, RowsMoveWithTheLogo)
{
    VNLogoContext logo;
    useSquare(logo);
    logo.setLogoTransparency(100);
    const OverlayLook look { .bounds = bounds, .isRecording = true, .isTranslucent = false };
    paint(look, &logo);
    const QRegion before = shape.intersected(recorded);
    logo.setLogoPosition(logo.LogoPosition() + QPointF(3, -5));
    paint(look, &logo);
    EXPECT_EQ(shape.intersected(recorded), before.translated(3, 5));
}

TEST_F(ShapedOverlay, LogoOutsideTheViewIsNone)
{
    VNLogoContext logo;
    useSquare(logo);
    logo.setLogoPosition({ 1000, 1000 });
    EXPECT_TRUE(stencilOf(&logo, bounds).shape.isEmpty());
    logo.setLogoPosition({ 200, 100 });
    const LogoStencil cut = stencilOf(&logo, bounds);
    EXPECT_EQ(cut.shape.boundingRect(), QRect(200, 0, 16, 16)) << "as far as the view reaches";
    EXPECT_TRUE(stencilOf(nullptr, bounds).picture.isNull());
}

TEST_F(ShapedOverlay, AnOpacityBeyondItsRangeIsTheEndOfIt)
{
    VNLogoContext logo;
    useSquare(logo);
    const QRegion whole = stencilOf(&logo, bounds).shape;
    logo.setLogoTransparency(std::numeric_limits<qint64>::max());
    EXPECT_EQ(stencilOf(&logo, bounds).shape, whole);
    logo.setLogoTransparency(std::numeric_limits<qint64>::min());
    EXPECT_TRUE(stencilOf(&logo, bounds).shape.isEmpty());
}

TEST_F(ShapedOverlay, ShowsNoMoreThanItsWindowHolds)
{
    VNLogoContext logo;
    useSquare(logo);
    const QRectF huge(0, 0, 1e9, 1e9);
    const OverlayLook look { .bounds = huge, .isTranslucent = false, .held = QRect(0, 0, 100, 80) };
    const LogoStencil stencil = stencilOf(&logo, huge, look.held);
    EXPECT_EQ(overlayShape(look, stencil).boundingRect(), QRect(0, 0, 100, 80));
    logo.setLogoScale(4);
    logo.setLogoPosition({ -100, 1e9 - 60 });
    EXPECT_EQ(stencilOf(&logo, huge, look.held).picture.size(), QSize(61, 61))
        << "as far as it is held, with a soft edge, to the right of -100 + 160";
}

TEST(OverlayOfHugeBounds, IsPaintedWhereTheWindowHoldsIt)
{
    const OverlayLook look { .bounds = QRectF(0, 0, 40'000, 1e9), .held = QRect(39'900, 0, 100, 80) };
    QImage image(100, 80, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    painter.translate(-39'900, 0);
    flipPainter(painter, look.bounds.height());
    paintOverlay(painter, look, nullptr);
    painter.end();
    // The upper right corner.
    EXPECT_EQ(image.pixelColor(10, 0), nothing);
    EXPECT_EQ(image.pixelColor(10, 3), lightGrey);
    EXPECT_EQ(image.pixelColor(95, 50), lightGrey);
    EXPECT_EQ(image.pixelColor(96, 4), cyan);
    EXPECT_TRUE(isTint(image.pixelColor(50, 50)));
}

/// Otherwise the dashes of all of it would be reckoned.
TEST(OverlayOfHugeBounds, IsDashedWhereTheWindowHoldsIt)
{
    OverlayLook look { .bounds = QRectF(0, 0, 40'000, 1e9), .held = QRect(39'900, 0, 100, 80) };
    look.isRecording = true;
    look.isPaused = true;
    const QRegion shape = overlayShape(look, {});
    EXPECT_LT(shape.rectCount(), 100);
    const QRect upright(39'994, 6, 4, 74);
    EXPECT_TRUE(shape.intersects(upright));
    EXPECT_FALSE((QRegion(upright) - shape).isEmpty()) << "there are gaps";
}

TEST(ChangedRegion, IsNoMoreThanWhatLooksOtherwise)
{
    const OverlayLook look { bounds };
    EXPECT_TRUE(changedRegion(look, look).isEmpty());
    OverlayLook focused = look;
    focused.isKey = true;
    EXPECT_EQ(changedRegion(look, focused), QRegion(2, 2, 212, 112) - QRegion(6, 6, 204, 104));
    OverlayLook paused = look;
    paused.isPaused = true;
    EXPECT_EQ(changedRegion(look, paused), changedRegion(look, focused)) << "the frame";
    OverlayLook recording = focused;
    recording.isRecording = true;
    EXPECT_EQ(changedRegion(look, recording), QRegion(bounds.toRect()));
    OverlayLook larger = look;
    larger.bounds.setWidth(300);
    EXPECT_EQ(changedRegion(look, larger), QRegion(0, 0, 300, 116));
}

TEST(LogoPixels, HoldWhatIsDrawn)
{
    VNLogoContext logo;
    logo.setLogoType(1);
    logo.setNSImage(QImage(40, 30, QImage::Format_RGB32));
    logo.setLogoPosition({ 50, 20 });
    EXPECT_TRUE(logoPixels(&logo, bounds).isEmpty()) << "it is off";
    logo.setLogoValidate(true);
    EXPECT_TRUE(logoPixels(&logo, bounds).contains(QRect(50, 66, 40, 30)));
    EXPECT_LE(logoPixels(&logo, bounds).width(), 42);
    EXPECT_TRUE(logoPixels(nullptr, bounds).isEmpty());
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runOverlayTests(argc, argv);
}
