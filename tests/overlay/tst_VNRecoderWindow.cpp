#include "overlay/VNRecoderView.h"
#include "overlay/VNRecoderViewDelegate.h"
#include "overlay/VNRecoderWindow.h"
#include "overlay/fake_overlay_server.h"
#include "overlay/input_receiver.h"
#include "overlay/size_label.h"
#include "overlay_main.h"
#include "support/wait_until.h"

#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include <algorithm>
#include <limits>

namespace vornic {
namespace {

class Delegate : public VNRecoderViewDelegate
{
public:
    void VNRecorderViewWindowFrameDidChanged(VNRecoderView & /*view*/) override { }
    bool VNRecorderViewWindowIsRecording(VNRecoderView & /*view*/) override { return isRecording; }
    bool VNRecorderViewWindowIsRecordFullScreen(VNRecoderView & /*view*/) override { return isFullScreen; }

    bool isRecording = false;
    bool isFullScreen = false;
};

/// The overlay on a desktop that is not there, around the rectangle (320, 150, 800, 600) of a display of
/// 1440 x 900: its window is at (312, 142) of the desktop.
class RecoderWindow : public testing::Test
{
protected:
    explicit RecoderWindow(const char *backend = "fake")
        : made(makeWindow(backend))
    {
        window.setContentView(&view);
        window.setFrame({ 312, 142, 816, 616 });
        view.setDelegate(&delegate);
        view.setLogoContext(&logo);
    }

    [[nodiscard]] static std::unique_ptr<VNRecoderWindow> makeWindow(const char *backend)
    {
        qputenv("VORNIC_OVERLAY", backend);
        auto made = std::make_unique<VNRecoderWindow>();
        qunsetenv("VORNIC_OVERLAY");
        return made;
    }
    void useLogo()
    {
        QImage picture(60, 40, QImage::Format_RGB32);
        picture.fill(Qt::red);
        logo.setLogoValidate(true);
        logo.setLogoType(1);
        logo.setNSImage(picture);
        logo.setLogoPosition({ 100, 100 });
    }
    [[nodiscard]] const OverlayAppearance &appearance() const { return server.asked().appearance; }

    VNLogoContext logo;
    Delegate delegate;
    std::unique_ptr<VNRecoderWindow> made;
    VNRecoderWindow &window = *made;
    FakeOverlayServer &server = dynamic_cast<FakeOverlayServer &>(window.server());
    VNRecoderView view { &window };

    const QRect onDesktop { 312, 142, 816, 616 };
    /// All of the window but its first pixel, on which nothing is drawn.
    const QRegion whole = QRegion(QRect(0, 0, 816, 616)) - QRect(0, 0, 1, 1);
    /// A window of the program's own that covers the upper left quarter.
    const QRect ownWindow { 312, 142, 408, 308 };
};

TEST_F(RecoderWindow, IsKeptInFrontWhileItIsShown)
{
    EXPECT_FALSE(server.asked().isInFront);
    window.orderFront();
    EXPECT_TRUE(server.asked().isInFront);
    EXPECT_TRUE(window.isVisible());
    window.orderOut();
    EXPECT_FALSE(server.asked().isInFront);
    EXPECT_FALSE(window.isVisible());
}

TEST_F(RecoderWindow, TranslucentItIsWholeAndTakesTheMouseItself)
{
    window.orderFront();
    EXPECT_EQ(appearance().shape, whole);
    EXPECT_FALSE(appearance().mouseShape) << "all of it";
    EXPECT_EQ(appearance().inputArea, QRegion());
}

TEST_F(RecoderWindow, OpaqueItIsCutToWhatItDrawsAndTheInputAreaTakesTheMouse)
{
    window.orderFront();
    server.setComposited(false);
    EXPECT_EQ(appearance().shape, view.shape());
    EXPECT_FALSE(appearance().shape.contains(QPoint(200, 300))) << "nothing is drawn inside";
    EXPECT_EQ(appearance().inputArea, QRegion(onDesktop));
    server.setComposited(true);
    EXPECT_EQ(appearance().shape, whole);
    EXPECT_EQ(appearance().inputArea, QRegion());
}

TEST_F(RecoderWindow, HiddenItHasNoInputArea)
{
    window.orderFront();
    server.setComposited(false);
    window.orderOut();
    view.redraw();
    EXPECT_EQ(appearance().inputArea, QRegion());
}

TEST_F(RecoderWindow, RecordingLeavesTheMouseToTheDesktop)
{
    window.orderFront();
    server.setComposited(false);
    delegate.isRecording = true;
    view.redraw();
    EXPECT_EQ(appearance().mouseShape, QRegion());
    EXPECT_EQ(appearance().inputArea, QRegion());
    delegate.isRecording = false;
    view.redraw();
    EXPECT_FALSE(appearance().mouseShape);
    EXPECT_EQ(appearance().inputArea, QRegion(onDesktop));
}

TEST_F(RecoderWindow, HasAHoleWhereOtherWindowsOfTheProgramAre)
{
    window.orderFront();
    server.setPixelsOfWindows(ownWindow);
    EXPECT_EQ(appearance().shape, whole - QRect(0, 0, 408, 308));
    server.setComposited(false);
    EXPECT_EQ(appearance().shape, view.shape() - QRect(0, 0, 408, 308));
    EXPECT_EQ(appearance().inputArea, QRegion(onDesktop) - ownWindow);
    server.setPixelsOfWindows({});
    EXPECT_EQ(appearance().shape, view.shape());
    EXPECT_EQ(appearance().inputArea, QRegion(onDesktop));
}

TEST_F(RecoderWindow, IsRecordedWithAHoleOnlyWhereOwnWindowsAreSeen)
{
    window.orderFront();
    server.setPixelsOfWindows(ownWindow, ownWindow.adjusted(0, 0, 0, -100));
    EXPECT_EQ(appearance().shape, whole - QRect(0, 0, 408, 308));
    delegate.isRecording = true;
    view.redraw();
    EXPECT_EQ(appearance().shape, whole - QRect(0, 0, 408, 208));
    server.setPixelsOfWindows(ownWindow, QRegion());
    EXPECT_EQ(appearance().shape, whole);
    delegate.isRecording = false;
    view.redraw();
    EXPECT_EQ(appearance().shape, whole - QRect(0, 0, 408, 308));
}

TEST_F(RecoderWindow, TheHoleStaysWhereItIsWhileTheWindowMoves)
{
    window.orderFront();
    server.setPixelsOfWindows(ownWindow);
    window.setFrame({ 312 - 100, 142, 816, 616 });
    EXPECT_EQ(appearance().shape, whole - QRect(100, 0, 408, 308));
}

TEST_F(RecoderWindow, DragsOverTheInputAreaMoveItToThePixel)
{
    window.orderFront();
    server.setComposited(false);
    server.receiver().inputPressed({ 512, 442 });
    server.receiver().inputDragged({ 512 - 30, 442 + 40 });
    EXPECT_EQ(window.frame(), QRectF(282, 102, 816, 616));
    EXPECT_EQ(appearance().inputArea, QRegion(onDesktop.translated(-30, 40)));
}

TEST_F(RecoderWindow, PointerShowsWhatAPressWouldTake)
{
    window.orderFront();
    useLogo();
    server.setComposited(false);
    const auto shapeAt = [&](QPoint inWindow) {
        server.receiver().inputMoved(QPoint(312, 142) + inWindow);
        return server.asked().cursor;
    };
    EXPECT_EQ(shapeAt({ 4, 4 }), Qt::SizeFDiagCursor);
    EXPECT_EQ(shapeAt({ 811, 611 }), Qt::SizeFDiagCursor);
    EXPECT_EQ(shapeAt({ 811, 4 }), Qt::SizeBDiagCursor);
    EXPECT_EQ(shapeAt({ 4, 611 }), Qt::SizeBDiagCursor);
    EXPECT_EQ(shapeAt({ 408, 4 }), Qt::SizeVerCursor);
    EXPECT_EQ(shapeAt({ 811, 308 }), Qt::SizeHorCursor);
    EXPECT_EQ(shapeAt({ 300, 300 }), Qt::SizeAllCursor);
    EXPECT_EQ(shapeAt({ 130, 616 - 120 }), Qt::OpenHandCursor);
    delegate.isFullScreen = true;
    EXPECT_EQ(shapeAt({ 130, 616 - 120 }), Qt::OpenHandCursor);
    EXPECT_EQ(shapeAt({ 300, 300 }), Qt::ArrowCursor);
    delegate.isFullScreen = false;
    QMouseEvent move(
        QEvent::MouseMove, { 4, 4 }, { 312 + 4, 142 + 4 }, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&view, &move);
    EXPECT_EQ(window.cursor().shape(), Qt::SizeFDiagCursor) << "over the toolkit's window as well";
    delegate.isRecording = true;
    EXPECT_EQ(shapeAt({ 300, 300 }), Qt::ArrowCursor);
}

TEST_F(RecoderWindow, TellsTheSizeFromTheFirstMovementToTheRelease)
{
    const auto label = []() -> QWidget * {
        const auto all = QApplication::topLevelWidgets();
        const auto found = std::ranges::find(all, QStringLiteral("sizeLabel"), &QObject::objectName);
        return found == all.end() ? nullptr : *found;
    };
    window.orderFront();
    server.setComposited(false);
    server.receiver().inputPressed({ 512, 442 });
    EXPECT_FALSE(label() && label()->isVisible());
    server.receiver().inputDragged({ 520, 442 });
    ASSERT_TRUE(QTest::qWaitFor([&] { return label() && label()->isVisible(); }));
    EXPECT_EQ(dynamic_cast<QLabel &>(*label()).text(), QStringLiteral("800 × 600"));
    server.receiver().inputReleased();
    EXPECT_FALSE(label()->isVisible());
    server.receiver().inputPressed({ 512, 442 });
    server.receiver().inputDragged({ 520, 442 });
    ASSERT_TRUE(QTest::qWaitFor([&] { return label()->isVisible(); }));
    delegate.isRecording = true;
    window.recordingChanged();
    EXPECT_FALSE(label()->isVisible()) << "never in a movie";
}

TEST(SizeLabelPosition, IsOutsideTheFrameWhereThereIsRoom)
{
    const QRect screen(0, 0, 800, 600);
    const QSize label(80, 20);
    EXPECT_EQ(sizeLabelPosition(label, { 100, 100, 400, 300 }, screen), QPoint(100 + 199 - 40, 406));
    EXPECT_EQ(sizeLabelPosition(label, { 100, 290, 400, 300 }, screen), QPoint(100 + 199 - 40, 264));
    EXPECT_EQ(sizeLabelPosition(label, { 100, -8, 400, 616 }, screen).x(), 506) << "right of it";
    EXPECT_EQ(sizeLabelPosition(label, { 300, -8, 508, 616 }, screen).x(), 300 - 6 - 80) << "left of it";
    EXPECT_TRUE(screen.contains(QRect(sizeLabelPosition(label, { -8, -8, 816, 616 }, screen), label)));
    EXPECT_EQ(sizeLabelPosition(label, { -60, 100, 70, 300 }, screen).x(), 0) << "not beyond the screen";
}

TEST_F(RecoderWindow, TakesPicturesThatAreDroppedOnTheInputArea)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath("picture.png");
    QImage picture(60, 40, QImage::Format_RGB32);
    picture.fill(Qt::red);
    ASSERT_TRUE(picture.save(file));
    QMimeData files;
    files.setUrls({ QUrl::fromLocalFile(file) });
    window.orderFront();
    EXPECT_FALSE(server.receiver().filesEntered(files, true)) << "without a picture for a logo";
    logo.setLogoValidate(true);
    logo.setLogoType(1);
    EXPECT_FALSE(server.receiver().filesEntered(files, false)) << "not to be copied";
    EXPECT_TRUE(server.receiver().filesEntered(files, true));
    EXPECT_TRUE(server.receiver().filesDropped(files, { 312 + 100, 142 + 616 - 80 }));
    EXPECT_EQ(logo.getNSImage().size(), QSize(60, 40));
    EXPECT_EQ(logo.LogoPosition(), QPointF(100 - 30, 80 - 20));
}

TEST_F(RecoderWindow, RecordingTheFullDisplayItTakesPressesOnTheLogoAlone)
{
    delegate.isFullScreen = true;
    window.setFrame({ -8, -8, 1456, 916 });
    window.orderFront();
    EXPECT_EQ(appearance().mouseShape, QRegion()) << "the logo is off";
    useLogo();
    // A press takes hold of the logo 4 points to the right of it and above.
    const QRect logoPixels(104, 916 - 104 - 40, 60, 40);
    EXPECT_EQ(appearance().mouseShape, QRegion(logoPixels));
    logo.setLogoPositionX(200);
    EXPECT_EQ(appearance().mouseShape, QRegion(logoPixels.translated(100, 0)));
    server.setComposited(false);
    EXPECT_EQ(appearance().inputArea, QRegion(logoPixels.translated(100 - 8, -8)));
    server.setDragging(true);
    EXPECT_EQ(appearance().inputArea, QRegion(-8, -8, 1456, 916)) << "a picture may be dropped anywhere";
    server.setComposited(true);
    EXPECT_FALSE(appearance().mouseShape);
    server.setDragging(false);
    EXPECT_EQ(appearance().mouseShape, QRegion(logoPixels.translated(100, 0)));
}

TEST_F(RecoderWindow, RecordingTheFullDisplayItIsNoTargetOfDragsThatItDoesNotTake)
{
    delegate.isFullScreen = true;
    window.setFrame({ -8, -8, 1456, 916 });
    useLogo();
    window.orderFront();
    server.setComposited(false);
    const QRegion logoAlone = appearance().inputArea;
    server.setDragging(true);
    QMimeData nothing;
    EXPECT_FALSE(server.receiver().filesEntered(nothing, true));
    EXPECT_EQ(appearance().inputArea, logoAlone);
    server.setDragging(false);
    server.setDragging(true);
    EXPECT_NE(appearance().inputArea, logoAlone) << "the next drag is another";
    logo.setLogoType(0);
    EXPECT_NE(appearance().inputArea, QRegion(-8, -8, 1456, 916)) << "a text is no target";
    delegate.isRecording = true;
    logo.setLogoType(1);
    EXPECT_TRUE(appearance().inputArea.isEmpty());
}

TEST_F(RecoderWindow, IsHiddenWhileTheWindowAboveIs)
{
    QWidget main;
    main.show();
    window.setWindowAbove(&main);
    window.orderFront();
    QCoreApplication::processEvents();
    EXPECT_TRUE(window.isVisible());
    main.showMinimized();
    QCoreApplication::processEvents();
    EXPECT_FALSE(window.isVisible());
    EXPECT_FALSE(server.asked().isInFront);
    main.showNormal();
    QCoreApplication::processEvents();
    EXPECT_TRUE(window.isVisible());
    EXPECT_TRUE(server.asked().isInFront);
    main.hide();
    QCoreApplication::processEvents();
    EXPECT_FALSE(window.isVisible());
    window.orderFront();
    EXPECT_FALSE(window.isVisible()) << "nor is it shown meanwhile";
    main.show();
    QCoreApplication::processEvents();
    EXPECT_TRUE(window.isVisible());
    window.orderOut();
    main.hide();
    main.show();
    QCoreApplication::processEvents();
    EXPECT_FALSE(window.isVisible()) << "it is not asked for";
    window.setWindowAbove(nullptr);
}

TEST_F(RecoderWindow, BacksOnlyWhatCanBeSeenOfAHugeRectangle)
{
    constexpr double infinite = std::numeric_limits<double>::infinity();
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    window.orderFront();
    useLogo();
    for (const QRectF &frame : { QRectF(-8, -8, 1e9, 1e9),
                                 QRectF(-1e9, -1e9, 2e9, 2e9),
                                 QRectF(1e9, 1e9, 1e9, 1e9),
                                 QRectF(0, 0, 40'000, 40'000),
                                 QRectF(-39'000, 0, 40'000, 300),
                                 QRectF(0, 0, infinite, infinite),
                                 QRectF(-infinite, -infinite, infinite, infinite),
                                 QRectF(none, none, none, none),
                                 QRectF(0, 0, -1e9, -1e9) }) {
        SCOPED_TRACE(testing::Message() << frame.x() << ' ' << frame.y() << ' ' << frame.width());
        for (const bool isComposited : { true, false }) {
            server.setComposited(isComposited);
            window.setFrame(frame);
            // The display of 1440 x 900, and 64 around it.
            EXPECT_LE(window.width(), 1440 + 128);
            EXPECT_LE(window.height(), 900 + 128);
            EXPECT_TRUE(QRegion(window.rect()).contains(appearance().shape.boundingRect())
                        || appearance().shape.isEmpty());
            EXPECT_LE(appearance().inputArea.boundingRect().width(), 1440 + 128);
            view.grab();
        }
    }
    window.setFrame({ 312, 142, 816, 616 });
    EXPECT_EQ(window.size(), QSize(816, 616));
}

TEST_F(RecoderWindow, FrameStaysWhatWasAskedForHoweverMuchIsSeen)
{
    const QRectF huge(-8, -8, 40'016, 1e8);
    window.setFrame(huge);
    EXPECT_EQ(window.frame(), huge);
    EXPECT_EQ(view.bounds(), QRectF(0, 0, 40'016, 1e8));
    window.orderFront();
    view.mouseDown({ 200, 200 });
    view.mouseDragged({ 190, 200 });
    EXPECT_EQ(window.frame(), QRectF(1448 - 40'016.0, 908 - 1e8, 40'016, 1e8)) << "moved within its limits";
}

/// Counts how often a window is hidden.
class Hidden : public QObject
{
public:
    explicit Hidden(QWidget &widget) { widget.installEventFilter(this); }
    bool eventFilter(QObject * /*object*/, QEvent *event) override
    {
        count += event->type() == QEvent::Hide ? 1 : 0;
        return false;
    }

    int count = 0;
};

TEST_F(RecoderWindow, StaysWhileARecordingBeginsByMinimisingTheWindowAbove)
{
    QWidget main;
    main.show();
    window.setWindowAbove(&main);
    window.orderFront();
    QCoreApplication::processEvents();
    const Hidden hidden(window);
    main.showMinimized();
    delegate.isRecording = true;
    window.recordingChanged();
    QCoreApplication::processEvents();
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(hidden.count, 0) << "not for a moment";
    delegate.isRecording = false;
    window.recordingChanged();
    QCoreApplication::processEvents();
    EXPECT_FALSE(window.isVisible());
    window.setWindowAbove(nullptr);
}

TEST_F(RecoderWindow, IsAsideUntilTheWindowAboveIsTurnedTo)
{
    QWidget main;
    QWidget field(&main);
    main.show();
    window.setWindowAbove(&main);
    window.orderFront();
    QCoreApplication::processEvents();
    EXPECT_TRUE(main.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    const auto aside = [&] {
        window.stepAside();
        QCoreApplication::processEvents();
        return !window.isVisible() && !main.windowFlags().testFlag(Qt::WindowStaysOnTopHint);
    };
    const auto tell = [&](QWidget &widget, QEvent::Type type) {
        QEvent event(type);
        QCoreApplication::sendEvent(&widget, &event);
        QCoreApplication::processEvents();
        return window.isVisible() && main.windowFlags().testFlag(Qt::WindowStaysOnTopHint);
    };
    EXPECT_TRUE(aside());
    EXPECT_FALSE(tell(main, QEvent::WindowActivate)) << "asked for before, told late";
    EXPECT_FALSE(tell(main, QEvent::WindowDeactivate));
    EXPECT_FALSE(tell(main, QEvent::WindowActivate)) << "as when a sheet closes";
    EXPECT_FALSE(tell(main, QEvent::WindowDeactivate));
    EXPECT_TRUE(test::waitUntil([&] { return tell(main, QEvent::WindowActivate); }))
        << "after another window had the keyboard for a while";
    EXPECT_TRUE(aside());
    QMouseEvent press(QEvent::MouseButtonPress, {}, {}, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QMenu menu;
    menu.popup({ 10, 10 });
    QCoreApplication::sendEvent(&field, &press);
    QCoreApplication::processEvents();
    EXPECT_FALSE(window.isVisible()) << "the press has opened a menu, which would close";
    menu.close();
    EXPECT_TRUE(test::waitUntil([&] { return window.isVisible(); })) << "a press on a control of it";
    EXPECT_TRUE(aside());
    delegate.isRecording = true;
    window.recordingChanged();
    EXPECT_TRUE(window.isVisible());
    EXPECT_FALSE(main.windowFlags().testFlag(Qt::WindowStaysOnTopHint))
        << "while recording it is one of many";
    delegate.isRecording = false;
    window.recordingChanged();
    QCoreApplication::processEvents();
    EXPECT_TRUE(window.isVisible());
    window.setWindowAbove(nullptr);
}

TEST_F(RecoderWindow, WaitsForTheServerOnlyWhileItIsShown)
{
    window.waitUntilDrawn();
    EXPECT_EQ(server.asked().waits, 0);
    window.orderFront();
    window.waitUntilDrawn();
    EXPECT_EQ(server.asked().waits, 1);
}

/// The same where the server shows the overlay itself.
class RecoderSurface : public RecoderWindow
{
protected:
    RecoderSurface()
        : RecoderWindow("fake-surface")
    {
    }

    /// What the surface shows at a pixel of the desktop.
    [[nodiscard]] QColor pixel(QPoint point) const
    {
        QImage surface(appearance().pixels.size(), QImage::Format_ARGB32_Premultiplied);
        surface.fill(Qt::transparent);
        QPainter painter(&surface);
        server.asked().paint(painter);
        return surface.pixelColor(point - appearance().pixels.topLeft());
    }
    /// What of the surface was to be painted anew since this was asked last.
    [[nodiscard]] QRegion takeRepainted()
    {
        QRegion repainted;
        for (; m_taken < server.asked().repaints.size(); ++m_taken)
            repainted += server.asked().repaints[m_taken];
        return repainted;
    }

private:
    qsizetype m_taken = 0;
};

TEST_F(RecoderSurface, TheToolkitShowsNothing)
{
    window.orderFront();
    EXPECT_TRUE(window.isVisible());
    EXPECT_FALSE(window.windowHandle()->isVisible());
    EXPECT_TRUE(server.asked().isInFront);
    window.orderOut();
    EXPECT_FALSE(server.asked().isInFront);
}

TEST_F(RecoderSurface, ShowsTheFrameAtItsPixels)
{
    window.orderFront();
    EXPECT_EQ(appearance().pixels, onDesktop);
    EXPECT_EQ(appearance().shape, whole);
    const QColor bar = pixel({ 600, 146 });
    EXPECT_EQ(bar, QColor(204, 204, 204));
    EXPECT_EQ(pixel({ 600, 142 }).alpha(), 0) << "outside the bar";
    EXPECT_EQ(pixel({ 500, 300 }).alpha(), 33) << "tinted";
    window.setFrame({ 322, 162, 826, 626 });
    EXPECT_EQ(appearance().pixels, QRect(322, 112, 826, 626));
    EXPECT_EQ(pixel({ 600, 116 }), bar);
}

TEST_F(RecoderSurface, TakesTheMouseWhereTheFrameIsAndNowhereWhileRecording)
{
    window.orderFront();
    EXPECT_EQ(appearance().inputArea, QRegion(onDesktop));
    server.setPixelsOfWindows(ownWindow);
    EXPECT_EQ(appearance().inputArea, QRegion(onDesktop) - ownWindow);
    EXPECT_EQ(appearance().shape, whole - ownWindow.translated(-onDesktop.topLeft()));
    delegate.isRecording = true;
    view.redraw();
    EXPECT_TRUE(appearance().inputArea.isEmpty());
}

TEST_F(RecoderSurface, WhatLiesBeyondTheDisplayIsNotHeld)
{
    window.setFrame({ -108, -8, 816, 616 });
    window.orderFront();
    EXPECT_EQ(appearance().pixels, QRect(-108, 292, 816, 616));
    EXPECT_EQ(appearance().inputArea, QRegion(QRect(0, 292, 708, 608)));
    EXPECT_EQ(window.heldPixels(), QRect(108, 0, 708, 608));
}

TEST_F(RecoderSurface, OnlyWhatLooksOtherwiseIsPaintedAnew)
{
    window.orderFront();
    (void)takeRepainted();
    view.redraw();
    EXPECT_TRUE(takeRepainted().isEmpty());
    useLogo();
    (void)takeRepainted();
    logo.setLogoPosition({ 140, 100 });
    const QRegion changed = takeRepainted();
    const QRect both(99, 616 - 141, 102, 42);
    EXPECT_FALSE(changed.isEmpty());
    EXPECT_TRUE((changed - both).isEmpty()) << "more than the logo where it was and is";
}

TEST_F(RecoderSurface, APressDragsTheFrame)
{
    window.orderFront();
    server.receiver().inputPressed({ 700, 400 });
    server.receiver().inputDragged({ 720, 390 });
    EXPECT_EQ(window.frame(), QRectF(332, 152, 816, 616));
    server.receiver().inputReleased();
}

/// The same where a window keeps the mouse from what lies beneath it.
class RecoderInParts : public RecoderWindow
{
protected:
    RecoderInParts()
    {
        server.setKeepsMouse();
        window.orderFront();
    }

    void setRecording(bool isRecording)
    {
        delegate.isRecording = isRecording;
        view.redraw();
    }
    void setFullScreen()
    {
        delegate.isFullScreen = true;
        window.setFrame({ -8, -8, 1456, 916 });
        view.redraw();
    }
    [[nodiscard]] bool isWindowOnScreen() const { return window.windowHandle()->isVisible(); }

    const QList<QRect> strips { { 0, 8, 8, 600 }, { 808, 8, 8, 600 }, { 0, 0, 816, 8 }, { 0, 608, 816, 8 } };
    /// With a pixel for the edges of the picture, and one that a coarser screen may leave out.
    const QRect logoPart { 98, 616 - 142, 64, 44 };
};

TEST_F(RecoderInParts, IdleAroundARectangleItIsTheWindow)
{
    EXPECT_FALSE(appearance().parts);
    EXPECT_TRUE(isWindowOnScreen());
}

TEST_F(RecoderInParts, RecordingItIsStripsAroundTheRectangleAndTheLogo)
{
    setRecording(true);
    EXPECT_EQ(appearance().parts, strips);
    EXPECT_FALSE(isWindowOnScreen());
    EXPECT_TRUE(window.isVisible()) << "for the rest of the program";
    EXPECT_TRUE(appearance().inputArea.isEmpty());
    useLogo();
    EXPECT_EQ(appearance().parts, strips + QList { logoPart });
    setRecording(false);
    EXPECT_FALSE(appearance().parts);
    EXPECT_TRUE(isWindowOnScreen());
    EXPECT_FALSE(appearance().mouseShape) << "all of it takes the mouse";
}

TEST_F(RecoderInParts, ALogoOnTheFrameIsInTheRectangleAlone)
{
    useLogo();
    logo.setLogoPosition({ 4, 100 });
    setRecording(true);
    ASSERT_EQ(appearance().parts->size(), 5);
    EXPECT_EQ(appearance().parts->last(), QRect(QPoint(8, logoPart.top()), QPoint(65, logoPart.bottom())));
}

TEST_F(RecoderInParts, OnTheFullDisplayItIsTheLogoWhichTakesTheMouse)
{
    useLogo();
    setFullScreen();
    const QRect picture(100, 916 - 140, 60, 40);
    ASSERT_EQ(appearance().parts->size(), 1);
    EXPECT_TRUE(appearance().parts->first().contains(picture));
    EXPECT_TRUE(appearance().parts->first().width() < 70 && appearance().parts->first().height() < 50);
    EXPECT_FALSE(appearance().inputArea.isEmpty());
    setRecording(true);
    EXPECT_EQ(appearance().parts->size(), 1) << "no strip fits on the display";
    EXPECT_TRUE(appearance().inputArea.isEmpty());
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runOverlayTests(argc, argv);
}
