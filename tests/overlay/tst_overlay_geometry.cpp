#include "options/VNLogoContext.h"
#include "overlay/overlay_geometry.h"
#include "overlay_main.h"

#include <limits>

namespace vornic {
namespace {

constexpr QRectF bounds(0, 0, 816, 616);
constexpr QRectF screen(0, 0, 1440, 900);

std::unique_ptr<VNLogoContext> pictureLogo(QRectF rectangle)
{
    auto logo = std::make_unique<VNLogoContext>();
    logo->setLogoValidate(true);
    logo->setLogoType(1);
    logo->setNSImage(QImage(rectangle.size().toSize(), QImage::Format_RGB32));
    logo->setLogoPosition(rectangle.topLeft());
    return logo;
}

struct HandleRow {
    int region;
    QPointF corner;
};

class Handles : public testing::TestWithParam<HandleRow>
{
};

TEST_P(Handles, AreDiscsInTheirSquares)
{
    const auto [region, corner] = GetParam();
    const auto disc = hotRegion(bounds, region);
    ASSERT_TRUE(disc);
    EXPECT_EQ(disc->boundingRect(), QRectF(corner, QSizeF(8, 8)));
    EXPECT_TRUE(disc->contains(corner + QPointF(4, 0.5)));
    EXPECT_FALSE(disc->contains(corner + QPointF(0.5, 0.5))) << "a corner of the square";
}

INSTANTIATE_TEST_SUITE_P(All,
                         Handles,
                         testing::Values(HandleRow { 0, { 0, 608 } },
                                         HandleRow { 1, { 404, 608 } },
                                         HandleRow { 2, { 808, 608 } },
                                         HandleRow { 3, { 0, 304 } },
                                         HandleRow { 4, { 808, 304 } },
                                         HandleRow { 5, { 0, 0 } },
                                         HandleRow { 6, { 404, 0 } },
                                         HandleRow { 7, { 808, 0 } },
                                         HandleRow { 8, { 404, 304 } }));

TEST(OverlayGeometry, HandlesFollowTheOriginOfTheBounds)
{
    EXPECT_EQ(hotRegion({ 10, 20, 101, 76 }, 1)->boundingRect(), QRectF(56.5, 88, 8, 8));
}

TEST(OverlayGeometry, ThereAreNineHotRegions)
{
    EXPECT_FALSE(hotRegion(bounds, 9));
    EXPECT_FALSE(hotRegion(bounds, 10));
    EXPECT_FALSE(hotRegion(bounds, -1));
}

TEST(OverlayGeometry, ScaleRegionIsTheEightEdgeHandles)
{
    const QPainterPath handles = hotScaleRegion(bounds);
    for (int region = 0; region < 8; ++region)
        EXPECT_TRUE(handles.contains(hotRegion(bounds, region)->boundingRect().center())) << region;
    EXPECT_FALSE(handles.contains(bounds.center()));
    // The left handle comes first, then the others from the top left on.
    EXPECT_LT(QPointF(handles.elementAt(0)).x(), 9);
    EXPECT_NEAR(QPointF(handles.elementAt(0)).y(), 308, 5);
}

TEST(OverlayGeometry, HotBoundsIsAFrameOfFourBars)
{
    const QPainterPath frame = hotBounds(bounds);
    EXPECT_EQ(frame.boundingRect(), QRectF(2, 2, 812, 612));
    const QRectF right(810, 2, 4, 612);
    for (const QPointF inside : { right.topLeft() + QPointF(0.5, 0.5),
                                  right.bottomRight() - QPointF(0.5, 0.5),
                                  QPointF(2.5, 300),
                                  QPointF(5.5, 300),
                                  QPointF(400, 2.5),
                                  QPointF(400, 613.5),
                                  QPointF(2.5, 2.5) /* two bars lie here: still inside */ })
        EXPECT_TRUE(frame.contains(inside)) << inside.x() << ' ' << inside.y();
    for (const QPointF outside :
         { QPointF(1.5, 300), QPointF(6.5, 300), QPointF(809.5, 300), QPointF(400, 609.5) })
        EXPECT_FALSE(frame.contains(outside)) << outside.x() << ' ' << outside.y();
    EXPECT_EQ(subjectRadiusBound({ 1, 2, 100, 50 }), QRectF(5, 6, 92, 42));
}

TEST(OverlayGeometry, PressOutsideEverythingMovesTheRectangle)
{
    EXPECT_EQ(regionAt({ 200, 200 }, bounds, nullptr), DragRegion::Elsewhere);
    EXPECT_EQ(static_cast<int>(DragRegion::Elsewhere), 10);
    EXPECT_EQ(regionAt({ 4, 200 }, bounds, nullptr), DragRegion::Elsewhere) << "the frame is no handle";
}

TEST(OverlayGeometry, EachHandleIsHit)
{
    for (int region = 0; region <= 8; ++region) {
        const QPointF middle = hotRegion(bounds, region)->boundingRect().center();
        EXPECT_EQ(static_cast<int>(regionAt(middle, bounds, nullptr)), region);
    }
}

TEST(OverlayGeometry, HandlesWinOverTheLogoAndTheLogoOverTheCentre)
{
    const auto logo = pictureLogo({ -50, -50, 1000, 1000 });
    EXPECT_EQ(regionAt({ 4, 612 }, bounds, logo.get()), DragRegion::TopLeft);
    EXPECT_EQ(regionAt({ 4, 308 }, bounds, logo.get()), DragRegion::Left);
    EXPECT_EQ(regionAt({ 408, 308 }, bounds, logo.get()), DragRegion::Logo);
    EXPECT_EQ(regionAt({ 100, 100 }, bounds, logo.get()), DragRegion::Logo);
}

TEST(OverlayGeometry, HandlesThatOverlapAreTriedInOrder)
{
    // In a view this narrow the handles of the upper edge lie over each other.
    const QRectF narrow(0, 0, 10, 100);
    EXPECT_EQ(regionAt({ 5, 96 }, narrow, nullptr), DragRegion::TopLeft);
    EXPECT_EQ(regionAt({ 8.5, 96 }, narrow, nullptr), DragRegion::Top);
    EXPECT_EQ(regionAt({ 5, 50 }, narrow, nullptr), DragRegion::Right) << "4 is tried before 3";
    // At the lower edge it is 7, 5, 6.
    EXPECT_EQ(regionAt({ 5, 4 }, narrow, nullptr), DragRegion::BottomRight);
    EXPECT_EQ(regionAt({ 1, 4 }, narrow, nullptr), DragRegion::BottomLeft);
}

TEST(OverlayGeometry, LogoIsHitFourPointsOff)
{
    const auto logo = pictureLogo({ 100, 100, 50, 30 });
    EXPECT_EQ(regionAt({ 102, 102 }, bounds, logo.get()), DragRegion::Elsewhere);
    EXPECT_EQ(regionAt({ 105, 105 }, bounds, logo.get()), DragRegion::Logo);
    EXPECT_EQ(regionAt({ 153, 133 }, bounds, logo.get()), DragRegion::Logo);
    EXPECT_EQ(regionAt({ 155, 133 }, bounds, logo.get()), DragRegion::Elsewhere);
    EXPECT_EQ(regionAtFullScreen({ 102, 102 }, logo.get()), DragRegion::Elsewhere);
    EXPECT_EQ(regionAtFullScreen({ 153, 133 }, logo.get()), DragRegion::Logo);
    EXPECT_EQ(regionAtFullScreen({ 4, 612 }, logo.get()), DragRegion::Elsewhere) << "no handles there";
}

TEST(OverlayGeometry, LogoThatIsOffIsNotHit)
{
    const auto logo = pictureLogo({ 100, 100, 50, 30 });
    logo->setLogoValidate(false);
    EXPECT_TRUE(logoOutline(logo.get()).isEmpty());
    EXPECT_EQ(regionAt({ 120, 120 }, bounds, logo.get()), DragRegion::Elsewhere);
    EXPECT_TRUE(logoOutline(nullptr).isEmpty());
    EXPECT_EQ(regionAtFullScreen({ 120, 120 }, nullptr), DragRegion::Elsewhere);
}

TEST(OverlayGeometry, OutlineOfAPictureTurnsAboutItsCentre)
{
    const auto logo = pictureLogo({ 100, 100, 50, 30 });
    EXPECT_EQ(logoOutline(logo.get()).boundingRect(), QRectF(100, 100, 50, 30));
    logo->setLogoRotation(90);
    EXPECT_EQ(logoOutline(logo.get()).boundingRect(), QRectF(110, 90, 30, 50));
    for (const qint64 whole : { 360, -720 }) {
        logo->setLogoRotation(whole);
        EXPECT_EQ(logoOutline(logo.get()).boundingRect(), QRectF(100, 100, 50, 30));
    }
    logo->setLogoRotation(45);
    EXPECT_TRUE(logoOutline(logo.get()).contains({ 125, 115 }));
    EXPECT_FALSE(logoOutline(logo.get()).contains({ 101, 101 }));
}

TEST(OverlayGeometry, OutlineOfTextTurnsAboutItsOrigin)
{
    VNLogoContext logo;
    logo.setLogoValidate(true);
    const QRectF straight = logo.getLogoRect();
    logo.setLogoRotation(90);
    const QRectF turned = logoOutline(&logo).boundingRect();
    EXPECT_NEAR(turned.x(), straight.x() - straight.height(), 1e-9);
    EXPECT_NEAR(turned.y(), straight.y(), 1e-9);
    EXPECT_NEAR(turned.width(), straight.height(), 1e-9);
    EXPECT_NEAR(turned.height(), straight.width(), 1e-9);
}

TEST(OverlayGeometry, OnlyTypeOneTurnsAboutItsCentre)
{
    const auto logo = pictureLogo({ 100, 100, 50, 30 });
    logo->setLogoType(2);
    logo->setLogoRotation(90);
    EXPECT_EQ(logoOutline(logo.get()).boundingRect(), QRectF(70, 100, 30, 50));
}

TEST(DragDistance, IsTruncatedTowardsZero)
{
    const DragDistance distance = DragDistance::between({ 10, 10 }, { 12.9, 7.1 });
    EXPECT_EQ(distance.dx, 2);
    EXPECT_EQ(distance.dy, -2);
}

TEST(LeftEdge, MovesBetweenItsLimits)
{
    const QRectF frame(100, 100, 300, 200);
    EXPECT_EQ(adjustedLeftEdge(frame, 30), QRectF(130, 100, 270, 200));
    EXPECT_EQ(adjustedLeftEdge(frame, -30), QRectF(70, 100, 330, 200));
    EXPECT_EQ(adjustedLeftEdge(frame, 224), QRectF(324, 100, 76, 200));
    EXPECT_EQ(adjustedLeftEdge(frame, 225), QRectF(324, 100, 76, 200));
    EXPECT_EQ(adjustedLeftEdge(frame, 250), QRectF(324, 100, 76, 200));
    EXPECT_EQ(adjustedLeftEdge(frame, -108), QRectF(-8, 100, 408, 200));
    EXPECT_EQ(adjustedLeftEdge(frame, -120), QRectF(-8, 100, 408, 200));
}

TEST(LeftEdge, FractionsAreCutOff)
{
    EXPECT_EQ(adjustedLeftEdge({ 100.5, 0, 300.75, 200 }, 3), QRectF(103, 0, 297, 200));
    EXPECT_EQ(adjustedLeftEdge({ -8.5, 0, 300, 200 }, 0), QRectF(-8, 0, 300, 200)) << "towards zero";
    EXPECT_EQ(adjustedLeftEdge({ 0, 0, 300.9, 200 }, 225), QRectF(224.9, 0, 76, 200)) << "75.9 counts as 75";
}

TEST(BottomEdge, TakesFourPointsOffTheTopAtItsLimit)
{
    EXPECT_EQ(adjustedBottomEdge({ 100, 10, 300, 200 }, -30), QRectF(100, -8, 300, 214));
    EXPECT_EQ(adjustedBottomEdge({ 100, 10, 300, 200 }, -18), QRectF(100, -8, 300, 218)) << "just there";
    EXPECT_EQ(adjustedBottomEdge({ 100, 100, 300, 200 }, 30), QRectF(100, 130, 300, 170));
    EXPECT_EQ(adjustedBottomEdge({ 100, 100, 300, 200 }, 124), QRectF(100, 224, 300, 76));
    EXPECT_EQ(adjustedBottomEdge({ 100, 100, 300, 200 }, 500), QRectF(100, 224, 300, 76));
}

TEST(BottomEdge, FractionsAreCutOff)
{
    // y + s = 103.5, h - s = 197.75
    EXPECT_EQ(adjustedBottomEdge({ 0, 100.5, 300, 200.75 }, 3), QRectF(0, 103, 300, 197));
    // y + s = -8.5 counts as -8, which is no stop yet.
    EXPECT_EQ(adjustedBottomEdge({ 0, -8.5, 300, 200 }, 0), QRectF(0, -8, 300, 200)) << "towards zero";
    EXPECT_EQ(adjustedBottomEdge({ 0, 0.5, 300, 200.5 }, -9), QRectF(0, -8, 300, 209)) << "h - s = 209.5";
    // y + s = -9.5 counts as -9: the stop, which cuts nothing off.
    EXPECT_EQ(adjustedBottomEdge({ 0, 0.5, 300, 200.25 }, -10), QRectF(0, -8, 300, 200.25 + 0.5 + 4));
    // h - s = 75.75 counts as 75: the shortest side, which cuts nothing off.
    EXPECT_EQ(adjustedBottomEdge({ 0, 10.5, 300, 300.75 }, 225), QRectF(0, 10.5 + (300.75 - 76), 300, 76));
}

TEST(TopEdge, StopsAboveTheScreenBeforeAnythingElse)
{
    EXPECT_EQ(adjustedTopEdge({ 0, 700, 300, 200 }, 50, screen), QRectF(0, 700, 300, 208));
    EXPECT_EQ(adjustedTopEdge({ 0, 700, 300, 200 }, 8, screen), QRectF(0, 700, 300, 208));
    EXPECT_EQ(adjustedTopEdge({ 0, 700, 300, 200 }, -500, screen), QRectF(0, 700, 300, 76));
    EXPECT_EQ(adjustedTopEdge({ 0, 700, 300, 200.5 }, -3, screen), QRectF(0, 700, 300, 197.5))
        << "no truncation";
    // The limit is tried first, so less than 76 may be left.
    EXPECT_EQ(adjustedTopEdge({ 0, 850, 300, 40 }, 30, screen), QRectF(0, 850, 300, 58));
    EXPECT_EQ(adjustedTopEdge({ 0, 850, 300, 40 }, -30, screen), QRectF(0, 850, 300, 76));
    EXPECT_EQ(adjustedTopEdge({ 0, 100, 300, 200 }, 50, { 0, 30, 1440, 200 }), QRectF(0, 100, 300, 138));
}

TEST(Slack, MakesHandlesLargerForAPressButNotOverTheLogo)
{
    const QRectF view(0, 0, 816, 616);
    const QPointF beside(16, 612 - 4); // of the handle at the upper left, which ends at 8
    EXPECT_EQ(regionAt(beside, view, nullptr), DragRegion::Elsewhere);
    EXPECT_EQ(regionAt(beside, view, nullptr, 8), DragRegion::Elsewhere) << "just out of reach";
    EXPECT_EQ(regionAt({ 14, 610 }, view, nullptr, 8), DragRegion::TopLeft);
    EXPECT_EQ(regionAt({ 14, 610 }, view, nullptr), DragRegion::Elsewhere);
    EXPECT_EQ(regionAt({ 408, 8 }, view, nullptr, 8), DragRegion::Bottom);
    VNLogoContext logo;
    QImage picture(100, 100, QImage::Format_RGB32);
    logo.setLogoValidate(true);
    logo.setLogoType(1);
    logo.setNSImage(picture);
    logo.setLogoPosition({ 5, 520 });
    EXPECT_EQ(regionAt({ 14, 610 }, view, &logo, 8), DragRegion::Logo);
}

TEST(RightEdge, StopsBeyondTheScreenBeforeAnythingElse)
{
    EXPECT_EQ(adjustedRightEdge({ 1000, 0, 300, 200 }, 500, screen), QRectF(1000, 0, 448, 200));
    EXPECT_EQ(adjustedRightEdge({ 1000, 0, 300, 200 }, 100, screen), QRectF(1000, 0, 400, 200));
    EXPECT_EQ(adjustedRightEdge({ 1000, 0, 300, 200 }, -500, screen), QRectF(1000, 0, 76, 200));
    EXPECT_EQ(adjustedRightEdge({ 1400, 0, 40, 200 }, 20, screen), QRectF(1400, 0, 48, 200));
}

TEST(Move, SnapsToTheRightLimitFourPointsEarly)
{
    const QRectF frame(1000, 100, 443, 300);
    EXPECT_EQ(movedOrigin(frame, { 0, 0 }, screen), QPointF(1000, 100));
    EXPECT_EQ(movedOrigin(frame, { 1, 0 }, screen), QPointF(1001, 100)) << "right edge at 1444";
    EXPECT_EQ(movedOrigin(frame, { 2, 0 }, screen), QPointF(1005, 100));
    EXPECT_EQ(movedOrigin(frame, { 500, 0 }, screen), QPointF(1005, 100));
}

TEST(Move, StopsEightPointsBeyondTheOtherEdges)
{
    const QRectF frame(1000, 100, 300, 300);
    EXPECT_EQ(movedOrigin(frame, { -1008, 0 }, screen), QPointF(-8, 100));
    EXPECT_EQ(movedOrigin(frame, { -2000, 0 }, screen), QPointF(-8, 100));
    EXPECT_EQ(movedOrigin(frame, { 0, -200 }, screen), QPointF(1000, -8));
    EXPECT_EQ(movedOrigin(frame, { 0, 508 }, screen), QPointF(1000, 608));
    EXPECT_EQ(movedOrigin(frame, { 0, 900 }, screen), QPointF(1000, 608));
    EXPECT_EQ(movedOrigin({ 0.5, 0.25, 100, 100 }, { 2, 3 }, screen), QPointF(2.5, 3.25));
}

TEST(Move, HasNoSnapAtTheTop)
{
    const QRectF frame(1000, 100, 300, 300);
    // The top edge starts at 100 + 300 = 400 and may go to 900 + 8.
    for (const int dy : { 504, 505, 506, 507, 508 })
        EXPECT_EQ(movedOrigin(frame, { 0, dy }, screen), QPointF(1000, 100 + dy));
    EXPECT_EQ(movedOrigin(frame, { 0, 509 }, screen), QPointF(1000, 908 - 300));
}

TEST(Move, TopAndRightLimitsComeFirst)
{
    // Beyond two limits at once: higher than 900 + 16, wider than 1440 + 16.
    EXPECT_EQ(movedOrigin({ 100, -8, 300, 1000 }, { 0, -42 }, screen), QPointF(100, 908 - 1000));
    EXPECT_EQ(movedOrigin({ -8, 100, 1500, 300 }, { -22, 0 }, screen), QPointF(1448 - 1500, 100));
    // Clear of the right limit of 1440 + 4, the left one counts.
    EXPECT_EQ(movedOrigin({ -8, 100, 1500, 300 }, { -60, 0 }, screen), QPointF(-8, 100));
    EXPECT_EQ(movedOrigin({ 100, -8, 300, 1000 }, { 0, -100 }, screen), QPointF(100, -8));
}

TEST(Move, LowerLimitsAreThoseOfTheDisplayUpperOnesThoseOfTheScreen)
{
    const QRectF other(100, 50, 1000, 700);
    EXPECT_EQ(movedOrigin({ 200, 200, 300, 300 }, { -5000, -5000 }, other), QPointF(-8, -8));
    EXPECT_EQ(movedOrigin({ 200, 200, 300, 300 }, { 5000, 5000 }, other),
              QPointF(100 + 1000 + 8 - 300, 50 + 700 + 8 - 300));
}

struct DragRow {
    DragRegion region;
    QRectF result;
};

class Drags : public testing::TestWithParam<DragRow>
{
};

TEST_P(Drags, MoveTheEdgesOfTheirHandle)
{
    EXPECT_EQ(draggedFrame({ 100, 100, 300, 200 }, GetParam().region, { 10, 20 }, screen), GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(All,
                         Drags,
                         testing::Values(DragRow { DragRegion::TopLeft, { 110, 100, 290, 220 } },
                                         DragRow { DragRegion::Top, { 100, 100, 300, 220 } },
                                         DragRow { DragRegion::TopRight, { 100, 100, 310, 220 } },
                                         DragRow { DragRegion::Left, { 110, 100, 290, 200 } },
                                         DragRow { DragRegion::Right, { 100, 100, 310, 200 } },
                                         DragRow { DragRegion::BottomLeft, { 110, 120, 290, 180 } },
                                         DragRow { DragRegion::Bottom, { 100, 120, 300, 180 } },
                                         DragRow { DragRegion::BottomRight, { 100, 120, 310, 180 } },
                                         DragRow { DragRegion::Centre, { 110, 120, 300, 200 } },
                                         DragRow { DragRegion::Logo, { 100, 100, 300, 200 } },
                                         DragRow { DragRegion::Elsewhere, { 110, 120, 300, 200 } }));

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runOverlayTests(argc, argv);
}
