#include "geometry/y_up.h"
#include "overlay/VNRecoderView.h"
#include "overlay/VNRecoderViewDelegate.h"
#include "overlay/VNRecoderWindow.h"
#include "overlay_main.h"
#include "support/named_pipe.h"

#include <QCursor>
#include <QDir>
#include <QDropEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QUrl>

namespace vornic {
namespace {

class Delegate : public VNRecoderViewDelegate
{
public:
    void VNRecorderViewWindowFrameDidChanged(VNRecoderView & /*view*/) override { ++changes; }
    bool VNRecorderViewWindowIsRecording(VNRecoderView & /*view*/) override { return isRecording; }
    bool VNRecorderViewWindowIsRecordFullScreen(VNRecoderView & /*view*/) override { return isFullScreen; }

    int changes = 0;
    bool isRecording = false;
    bool isFullScreen = false;
};

/// A view in its window, around the rectangle (320, 150, 800, 600) of a display of 1440 x 900.
class RecoderView : public testing::Test
{
protected:
    RecoderView()
    {
        window.setContentView(&view);
        window.setFrame({ 312, 142, 816, 616 });
        view.setDelegate(&delegate);
        view.setLogoContext(&logo);
        window.orderFront();
        picture.fill(Qt::red);
    }

    /// From a point of the view to another, in two steps.
    void drag(QPointF from, QPointF by)
    {
        const QPointF start = window.frame().topLeft() + from;
        view.mouseDown(start);
        view.mouseDragged(start + by / 2);
        view.mouseDragged(start + by);
    }
    void usePicture(QPointF position)
    {
        logo.setLogoValidate(true);
        logo.setLogoType(1);
        logo.setNSImage(picture);
        logo.setLogoPosition(position);
    }

    VNLogoContext logo;
    Delegate delegate;
    VNRecoderWindow window;
    VNRecoderView view { &window };
    QImage picture { 60, 40, QImage::Format_RGB32 };
};

TEST_F(RecoderView, FillsItsWindow)
{
    EXPECT_EQ(view.bounds(), QRectF(0, 0, 816, 616));
    EXPECT_EQ(view.geometry(), window.rect());
    window.setFrame({ 100, 100, 300, 200 });
    EXPECT_EQ(view.bounds(), QRectF(0, 0, 300, 200));
    EXPECT_EQ(view.trackingArea(), QRectF(0, 0, 300, 200));
    EXPECT_EQ(window.geometry(), QRect(100, 600, 300, 200));
}

TEST_F(RecoderView, GeometryIsThatOfItsBounds)
{
    EXPECT_EQ(view.getHotRegion(0)->boundingRect(), QRectF(0, 608, 8, 8));
    EXPECT_EQ(view.getHotRegion(4)->boundingRect(), QRectF(808, 304, 8, 8));
    EXPECT_EQ(view.getHotRegion(8)->boundingRect(), QRectF(404, 304, 8, 8));
    EXPECT_FALSE(view.getHotRegion(9));
    EXPECT_TRUE(view.getHotBounds().contains(QRectF(810.1, 2.1, 3.8, 611.8)));
    EXPECT_TRUE(view.getHotScaleRegion().contains({ 4, 612 }));
    EXPECT_EQ(view.subjectRadiusBound({ 0, 0, 100, 50 }), QRectF(4, 4, 92, 42));
}

TEST_F(RecoderView, ArithmeticIsAtHand)
{
    const QRectF screen(0, 0, 1440, 900);
    EXPECT_EQ(VNRecoderView::adjustLeftEdge({ 100, 100, 300, 200 }, 250, screen), QRectF(324, 100, 76, 200));
    EXPECT_EQ(VNRecoderView::adjustBottomEdge({ 100, 10, 300, 200 }, -30, screen), QRectF(100, -8, 300, 214));
    EXPECT_EQ(VNRecoderView::adjustTopEdge({ 0, 700, 300, 200 }, 50, screen), QRectF(0, 700, 300, 208));
    EXPECT_EQ(VNRecoderView::adjustRightEdge({ 1000, 0, 300, 200 }, 500, screen), QRectF(1000, 0, 448, 200));
    EXPECT_EQ(VNRecoderView::movedWindow({ 1000, 100, 443, 300 }, 2, 0, screen), QPointF(1005, 100));
}

TEST_F(RecoderView, WithoutDelegateItIsIdleAndInRectangleMode)
{
    view.setDelegate(nullptr);
    EXPECT_FALSE(view.isRecording());
    EXPECT_FALSE(view.isRecordFullScreen());
    drag({ 200, 200 }, { 10, 20 });
    EXPECT_EQ(window.frame(), QRectF(322, 162, 816, 616));
}

TEST_F(RecoderView, DraggingNowhereInParticularMovesTheWindow)
{
    drag({ 200, 200 }, { -30, 40 });
    EXPECT_EQ(window.frame(), QRectF(282, 182, 816, 616));
    EXPECT_EQ(delegate.changes, 2) << "told at every step";
}

TEST_F(RecoderView, EveryStepCountsFromThePress)
{
    const QPointF start = window.frame().topLeft() + QPointF(200, 200);
    view.mouseDown(start);
    for (const QPointF step : { QPointF(-2000, 0), QPointF(5, 5), QPointF(0.9, -0.9) })
        view.mouseDragged(start + step);
    EXPECT_EQ(window.frame(), QRectF(312, 142, 816, 616)) << "less than a point is nothing";
}

TEST_F(RecoderView, HandlesResize)
{
    drag({ 812, 612 }, { 10, 20 });
    EXPECT_EQ(window.frame(), QRectF(312, 142, 826, 636));
    drag({ 4, 4 }, { -12, 8 });
    EXPECT_EQ(window.frame(), QRectF(300, 150, 838, 628));
}

TEST_F(RecoderView, LogoMovesAlone)
{
    usePicture({ 100, 100 });
    drag({ 120, 120 }, { 33, -12.5 });
    EXPECT_EQ(logo.LogoPosition(), QPointF(133, 88));
    EXPECT_EQ(window.frame(), QRectF(312, 142, 816, 616));
    EXPECT_EQ(delegate.changes, 0);
}

TEST_F(RecoderView, HandleWinsOverTheLogo)
{
    usePicture({ -10, 590 });
    drag({ 4, 612 }, { 10, -10 });
    EXPECT_EQ(logo.LogoPosition(), QPointF(-10, 590));
    EXPECT_EQ(window.frame(), QRectF(322, 142, 806, 606));
}

TEST_F(RecoderView, OnlyTheLogoMovesWhileTheFullDisplayIsRecorded)
{
    delegate.isFullScreen = true;
    window.setFrame({ -8, -8, 1456, 916 });
    usePicture({ 100, 100 });
    drag({ 120, 120 }, { 5, 6 });
    EXPECT_EQ(logo.LogoPosition(), QPointF(105, 106));
    drag({ 4, 4 }, { 50, 50 });
    drag({ 700, 500 }, { 50, 50 });
    EXPECT_EQ(window.frame(), QRectF(-8, -8, 1456, 916));
    EXPECT_EQ(logo.LogoPosition(), QPointF(105, 106));
    EXPECT_EQ(delegate.changes, 0);
}

TEST_F(RecoderView, PressWhileTheFullDisplayIsRecordedLeavesTheFrameThatDragsStartFrom)
{
    view.mouseDown({ 512, 342 });
    delegate.isFullScreen = true;
    window.setFrame({ -8, -8, 1456, 916 });
    view.mouseDown({ 700, 500 });
    delegate.isFullScreen = false;
    view.mouseDragged({ 710, 520 });
    EXPECT_EQ(window.frame(), QRectF(312 + 10, 142 + 20, 816, 616)) << "from the rectangle's own press";
}

TEST_F(RecoderView, LogoThatIsOffDoesNotMove)
{
    usePicture({ 100, 100 });
    logo.setLogoValidate(false);
    drag({ 120, 120 }, { 5, 6 });
    EXPECT_EQ(logo.LogoPosition(), QPointF(100, 100));
    EXPECT_EQ(window.frame(), QRectF(317, 148, 816, 616));
}

TEST_F(RecoderView, RecordingIgnoresPressAndDrag)
{
    const QPointF start = window.frame().topLeft() + QPointF(200, 200);
    delegate.isRecording = true;
    drag({ 200, 200 }, { 50, 50 });
    EXPECT_EQ(window.frame(), QRectF(312, 142, 816, 616));
    // A drag that a recording interrupts goes on where it was, from its own press.
    delegate.isRecording = false;
    view.mouseDown(start);
    delegate.isRecording = true;
    view.mouseDown(start + QPointF(77, 77));
    view.mouseDragged(start + QPointF(5, 5));
    EXPECT_EQ(window.frame(), QRectF(312, 142, 816, 616));
    delegate.isRecording = false;
    view.mouseDragged(start + QPointF(5, 5));
    EXPECT_EQ(window.frame(), QRectF(317, 147, 816, 616));
    EXPECT_EQ(delegate.changes, 1);
}

TEST_F(RecoderView, MouseOfTheToolkitCountsByTheMiddleOfItsPixels)
{
    const auto send
        = [this](QEvent::Type type, QPointF global, Qt::MouseButton button, Qt::MouseButtons held) {
              QMouseEvent event(type, view.mapFromGlobal(global), global, button, held, Qt::NoModifier);
              QCoreApplication::sendEvent(&view, &event);
          };
    // The pixel at the lower right of the upper left handle's disc; y is down here.
    const QPointF handle(312 + 5, 142 + 5);
    send(QEvent::MouseButtonPress, handle, Qt::RightButton, Qt::RightButton);
    send(QEvent::MouseMove, handle + QPointF(10, 10), Qt::NoButton, Qt::RightButton);
    EXPECT_EQ(window.frame(), QRectF(312, 142, 816, 616)) << "the first button alone";
    send(QEvent::MouseButtonPress, handle, Qt::LeftButton, Qt::LeftButton);
    send(QEvent::MouseMove, handle + QPointF(-12, -22), Qt::NoButton, Qt::LeftButton);
    EXPECT_EQ(window.frame(), QRectF(300, 142, 828, 638));
    send(QEvent::MouseButtonRelease, handle, Qt::LeftButton, Qt::NoButton);
    send(QEvent::MouseMove, handle, Qt::NoButton, Qt::NoButton);
    EXPECT_EQ(window.frame(), QRectF(300, 142, 828, 638));
}

TEST_F(RecoderView, ChangesNoCursor)
{
    usePicture({ 100, 100 });
    drag({ 120, 120 }, { 1, 1 });
    drag({ 812, 612 }, { 1, 1 });
    EXPECT_FALSE(view.testAttribute(Qt::WA_SetCursor));
    EXPECT_FALSE(window.testAttribute(Qt::WA_SetCursor));
}

TEST_F(RecoderView, NotesGoOutUnderTheirName)
{
    QSignalSpy spy(&view, &VNRecoderView::notified);
    view.notifyMessage("some name");
    ASSERT_EQ(spy.size(), 1);
    EXPECT_EQ(spy[0][0].toString(), "some name");
}

/// Counts the pixels that are asked to be painted.
class Painted : public QObject
{
public:
    explicit Painted(QWidget &widget) { widget.installEventFilter(this); }
    bool eventFilter(QObject * /*object*/, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            region += static_cast<QPaintEvent *>(event)->region();
        return false;
    }
    QRegion take()
    {
        QCoreApplication::processEvents();
        return std::exchange(region, {});
    }

    QRegion region;
};

TEST_F(RecoderView, RepaintsNoMoreThanItMust)
{
    usePicture({ 100, 100 });
    Painted painted(view);
    QCoreApplication::processEvents();
    view.redraw(); // the window may have got the keyboard focus
    painted.take();
    view.redraw();
    EXPECT_EQ(painted.take().boundingRect().adjusted(1, 1, -1, -1), QRect(100, 476, 60, 40))
        << "the logo alone";

    logo.setLogoPosition({ 300, 100 });
    const QRegion moved = painted.take();
    EXPECT_TRUE(moved.contains(QRect(100, 476, 60, 40)) && moved.contains(QRect(300, 476, 60, 40)));
    EXPECT_FALSE(moved.contains(QPoint(230, 490))) << "not what lies between";

    drag({ 600, 300 }, { 20, 20 });
    EXPECT_TRUE(painted.take().isEmpty()) << "moving paints nothing";

    delegate.isRecording = true;
    view.redraw();
    EXPECT_EQ(painted.take().boundingRect(), view.rect());
}

TEST_F(RecoderView, FollowsEverySettingOfTheLogo)
{
    usePicture({ 100, 100 });
    Painted painted(view);
    painted.take();
    for (const std::function<void()> &change :
         std::initializer_list<std::function<void()>> { [this] { logo.setLogoScale(1.5); },
                                                        [this] { logo.setLogoRotation(30); },
                                                        [this] { logo.setLogoTransparency(100); },
                                                        [this] { logo.setLogoPositionX(120); },
                                                        [this] { logo.setIsLogoTypeText(true); },
                                                        [this] { logo.setLogoText("Other"); },
                                                        [this] { logo.setLogoFontFillColor(Qt::red); },
                                                        [this] { logo.setLogoFontStrokeColor(Qt::red); },
                                                        [this] { logo.setLogoValidate(false); } }) {
        change();
        EXPECT_FALSE(painted.take().isEmpty());
    }
    VNLogoContext other;
    view.setLogoContext(&other);
    painted.take();
    logo.setLogoValidate(true);
    EXPECT_TRUE(painted.take().isEmpty()) << "no longer its logo";
    view.setLogoContext(nullptr);
    view.redraw();
}

TEST_F(RecoderView, PaintsItselfAtAnyRatio)
{
    usePicture({ 100, 100 });
    for (const int ratio : { 1, 2 }) {
        QImage image(QSize(816, 616) * ratio, QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&image);
        painter.scale(ratio, ratio);
        flipPainter(painter, 616);
        view.drawRect(painter);
        painter.end();
        EXPECT_EQ(image.pixelColor(130 * ratio, 500 * ratio), QColor(Qt::red));
        EXPECT_EQ(image.pixelColor(400 * ratio, 300 * ratio).alpha(), 33);
        EXPECT_EQ(image.pixelColor(200 * ratio, 4 * ratio).alpha(), 255);
    }
    EXPECT_EQ(view.grab().toImage().pixelColor(130, 500), QColor(Qt::red)) << "as a window too";
}

TEST_F(RecoderView, LogoThatDiesIsNoLongerThere)
{
    auto brief = std::make_unique<VNLogoContext>();
    brief->setLogoValidate(true);
    view.setLogoContext(brief.get());
    brief.reset();
    view.redraw();
    EXPECT_TRUE(view.pathForLogo().isEmpty());
    drag({ 200, 200 }, { 1, 0 });
    EXPECT_EQ(window.frame(), QRectF(313, 142, 816, 616));
}

/// Files that are dragged in from elsewhere.
class Drops : public RecoderView
{
protected:
    Drops()
    {
        usePicture({ 0, 0 });
        QImage dropped(120, 80, QImage::Format_RGB32);
        dropped.fill(Qt::yellow);
        EXPECT_TRUE(dropped.save(folder.filePath("good.png")));
        QFile good(folder.filePath("good.png"));
        QFile cut(folder.filePath("cut.png"));
        QFile text(folder.filePath("text.png"));
        EXPECT_TRUE(good.open(QIODevice::ReadOnly) && cut.open(QIODevice::WriteOnly)
                    && text.open(QIODevice::WriteOnly));
        cut.write(good.readAll().first(60));
        text.write("no picture");
    }

    DraggingInfo info(const QString &file)
    {
        files.setUrls({ QUrl::fromLocalFile(folder.filePath(file)) });
        return { &files, Qt::CopyAction | Qt::MoveAction, nullptr, { 400, 300 } };
    }
    /// The whole way; whether the picture was taken.
    bool drop(const DraggingInfo &sender)
    {
        return view.draggingEntered(sender) == Qt::CopyAction && view.prepareForDragOperation(sender)
            && view.performDragOperation(sender);
    }

    QTemporaryDir folder;
    QMimeData files;
};

TEST_F(Drops, PictureIsCentredWhereItIsDropped)
{
    logo.setLogoScale(2);
    EXPECT_TRUE(drop(info("good.png")));
    EXPECT_EQ(logo.getNSImage().size(), QSize(120, 80));
    EXPECT_EQ(logo.LogoPosition(), QPointF(340, 260)) << "the unscaled centre";
    EXPECT_EQ(logo.getNSImage().pixelColor(5, 5), QColor(Qt::yellow));
}

TEST_F(Drops, ATooLargePictureIsScaledDownAndToldOf)
{
    QSignalSpy scaledDown(&logo, &VNLogoContext::pictureScaledDown);
    QImage large(10000, 6000, QImage::Format_Grayscale8);
    large.fill(Qt::gray);
    ASSERT_TRUE(large.save(folder.filePath("large.jpg")));
    EXPECT_TRUE(drop(info("large.jpg")));
    EXPECT_EQ(logo.getNSImage().size(), QSize(7478, 4486));
    EXPECT_EQ(logo.LogoPosition(), QPointF(400 - 7478 / 2.0, 300 - 4486 / 2.0));
    ASSERT_EQ(scaledDown.size(), 1);
    EXPECT_EQ(scaledDown.first(), (QVariantList { "large.jpg", large.size(), QSize(7478, 4486) }));
}

TEST_F(Drops, ANamedPipeIsRefusedWithoutBeingOpened)
{
    test::NamedPipe pipe(folder.filePath("pipe.png"));
    ASSERT_TRUE(pipe.isMade());
    const DraggingInfo dropped = info("pipe.png");
    EXPECT_EQ(view.draggingEntered(dropped), Qt::IgnoreAction);
    EXPECT_FALSE(view.prepareForDragOperation(dropped));
    EXPECT_FALSE(view.performDragOperation(dropped));
    EXPECT_FALSE(pipe.wasOpened());
}

TEST_F(Drops, RecordingDoesNotRefuse)
{
    delegate.isRecording = true;
    EXPECT_TRUE(drop(info("good.png")));
}

TEST_F(Drops, TextLogoRefuses)
{
    logo.setLogoType(0);
    const DraggingInfo sender = info("good.png");
    EXPECT_EQ(view.draggingEntered(sender), Qt::IgnoreAction);
    EXPECT_FALSE(view.prepareForDragOperation(sender));
    EXPECT_FALSE(view.performDragOperation(sender));
    EXPECT_EQ(logo.getNSImage().size(), picture.size());
    EXPECT_EQ(logo.LogoPosition(), QPointF(0, 0));
}

TEST_F(Drops, OnlyTypeOneTakesPictures)
{
    logo.setLogoType(2);
    EXPECT_FALSE(drop(info("good.png")));
}

TEST_F(Drops, LogoThatIsOffRefuses)
{
    logo.setLogoValidate(false);
    EXPECT_EQ(view.draggingEntered(info("good.png")), Qt::IgnoreAction);
    EXPECT_FALSE(view.prepareForDragOperation(info("good.png")));
    EXPECT_FALSE(view.performDragOperation(info("good.png")));
    view.setLogoContext(nullptr);
    EXPECT_EQ(view.draggingEntered(info("good.png")), Qt::IgnoreAction);
    EXPECT_FALSE(view.performDragOperation(info("good.png")));
}

TEST_F(Drops, WhatIsNoPictureIsRefused)
{
    for (const char *name : { "text.png", "missing.png", "." }) {
        EXPECT_EQ(view.draggingEntered(info(name)), Qt::IgnoreAction) << name;
        EXPECT_FALSE(view.prepareForDragOperation(info(name))) << name;
        EXPECT_FALSE(view.performDragOperation(info(name))) << name;
    }
    EXPECT_FALSE(drop(info("cut.png"))) << "it begins as a picture";
    files.clear();
    files.setText(folder.filePath("good.png"));
    EXPECT_FALSE(drop({ &files, Qt::CopyAction, nullptr, {} })) << "names of files alone";
    files.clear();
    files.setUrls({ QUrl("https://localhost/good.png") });
    EXPECT_FALSE(drop({ &files, Qt::CopyAction, nullptr, {} }));
    EXPECT_FALSE(drop({}));
    EXPECT_EQ(logo.getNSImage().size(), picture.size()) << "the old picture stays";
}

TEST_F(Drops, SourceMustLetItBeCopied)
{
    DraggingInfo sender = info("good.png");
    sender.sourceOperationMask = Qt::MoveAction | Qt::LinkAction;
    EXPECT_EQ(view.draggingEntered(sender), Qt::IgnoreAction);
}

TEST_F(Drops, OwnDragsAreRefusedAtTheEnd)
{
    DraggingInfo sender = info("good.png");
    sender.source = &view;
    EXPECT_EQ(view.draggingEntered(sender), Qt::CopyAction);
    EXPECT_TRUE(view.prepareForDragOperation(sender));
    EXPECT_FALSE(view.performDragOperation(sender));
}

TEST_F(Drops, EnteringAndLeavingRedraw)
{
    QSignalSpy redrawn(&view, &VNRecoderView::redrawn);
    EXPECT_EQ(view.draggingEntered(info("good.png")), Qt::CopyAction);
    view.draggingExited(info("good.png"));
    EXPECT_EQ(redrawn.size(), 2);
    logo.setLogoType(0);
    redrawn.clear();
    view.draggingExited(info("good.png"));
    EXPECT_TRUE(redrawn.isEmpty());
}

TEST_F(Drops, PreparingRedraws)
{
    logo.setLogoPosition({ 100, 100 });
    QSignalSpy redrawn(&view, &VNRecoderView::redrawn);
    Painted painted(view);
    painted.take();
    for (const auto &[file, isTaken] : { std::pair("good.png", true), std::pair("text.png", false) }) {
        redrawn.clear();
        EXPECT_EQ(view.prepareForDragOperation(info(file)), isTaken);
        EXPECT_EQ(redrawn.size(), 1) << file;
        // The logo's 60 x 40 pixels; its top is 616 - (100 + 40) from that of the view.
        EXPECT_TRUE(painted.take().contains(QRect(100, 476, 60, 40))) << file;
    }
    logo.setLogoType(0);
    redrawn.clear();
    EXPECT_FALSE(view.prepareForDragOperation(info("good.png")));
    EXPECT_TRUE(redrawn.isEmpty());
}

TEST_F(Drops, PerformingRedrawsByItself)
{
    logo.setLogoPosition({ 100, 100 });
    Painted painted(view);
    painted.take();
    QSignalSpy redrawn(&view, &VNRecoderView::redrawn);
    {
        const QSignalBlocker silent(logo); // whose new position would make the view redraw as well
        EXPECT_TRUE(view.performDragOperation(info("good.png")));
    }
    EXPECT_EQ(redrawn.size(), 1);
    const QRegion region = painted.take();
    EXPECT_TRUE(region.contains(QRect(100, 476, 60, 40))) << "where the logo was";
    // 120 x 80 about (400, 300): from (340, 260) on, 616 - (260 + 80) from the top.
    EXPECT_TRUE(region.contains(QRect(340, 276, 120, 80))) << "where it is";
    EXPECT_EQ(view.grab().toImage().pixelColor(400, 316), QColor(Qt::yellow));
}

TEST_F(Drops, ToolkitsDragTakesTheSameWay)
{
    view.setAcceptDrops(true);
    static_cast<void>(info("good.png"));
    QDragEnterEvent enter({ 400, 316 }, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&view, &enter);
    EXPECT_TRUE(enter.isAccepted());
    EXPECT_EQ(enter.dropAction(), Qt::CopyAction);
    QDragMoveEvent move({ 401, 316 }, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&view, &move);
    EXPECT_TRUE(move.isAccepted());
    QDropEvent drop({ 400, 316 }, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&view, &drop);
    EXPECT_TRUE(drop.isAccepted());
    EXPECT_EQ(logo.LogoPosition(), QPointF(340, 260));

    logo.setLogoType(0);
    QDragEnterEvent refused({ 400, 316 }, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&view, &refused);
    EXPECT_FALSE(refused.isAccepted());
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runOverlayTests(argc, argv);
}
