#include "overlay/VNRecoderWindow.h"
#include "overlay/VNRecorderWndCtrl.h"
#include "overlay/VNRecorderWndCtrlDelegate.h"
#include "overlay_main.h"

#include <QSignalSpy>

namespace vornic {
namespace {

class Delegate : public VNRecorderWndCtrlDelegate
{
public:
    bool VNRecorderWndCtrlIsRecording(VNRecorderWndCtrl &controller) override
    {
        asked = &controller;
        return isRecording;
    }

    bool VNRecorderWndCtrlIsPaused(VNRecorderWndCtrl & /*controller*/) override { return isPaused; }

    bool isRecording = false;
    bool isPaused = false;
    VNRecorderWndCtrl *asked = nullptr;
};

class RecorderWndCtrl : public testing::Test
{
protected:
    RecorderWndCtrl()
    {
        overlay.setOptions(&options);
        overlay.setDelegate(&delegate);
        options.setRecordRegion(1);
    }
    ~RecorderWndCtrl() override
    {
        overlay.window()->orderOut();
        overlay.setDelegate(nullptr);
        overlay.setOptions(nullptr);
    }

    void drag(QPointF from, QPointF by)
    {
        overlay.recorderView()->mouseDown(from);
        overlay.recorderView()->mouseDragged(from + by);
    }

    VNRecorderWndCtrl &overlay = VNRecorderWndCtrl::shareRecorderWndCtrl();
    VNOption options;
    Delegate delegate;
};

TEST_F(RecorderWndCtrl, IsOneForTheProcess)
{
    EXPECT_EQ(&overlay, &VNRecorderWndCtrl::shareRecorderWndCtrl());
    ASSERT_TRUE(overlay.window());
    ASSERT_TRUE(overlay.recorderView());
    EXPECT_EQ(overlay.recorderView()->window(), overlay.window());
    EXPECT_TRUE(overlay.recorderView()->acceptDrops());
    EXPECT_TRUE(overlay.window()->recorderWnddelegate());
    EXPECT_TRUE(overlay.recorderView()->delegate());
    EXPECT_EQ(overlay.options(), &options);
    EXPECT_EQ(overlay.delegate(), &delegate);
}

TEST_F(RecorderWndCtrl, BoundsGrowAndShrinkByEight)
{
    const QRectF frame = VNRecorderWndCtrl::enlargeRectBounds({ 320, 150, 800, 600 });
    EXPECT_EQ(frame, QRectF(312, 142, 816, 616));
    EXPECT_EQ(VNRecorderWndCtrl::excludeRectBounds(frame), QRectF(320, 150, 800, 600));
    EXPECT_EQ(VNRecorderWndCtrl::excludeRectBounds({}), QRectF(8, 8, -16, -16));
}

TEST_F(RecorderWndCtrl, WindowIsBorderlessWhateverIsAskedFor)
{
    const VNRecoderWindow window(
        { 10, 20, 300, 200 }, Qt::Window | Qt::WindowTitleHint | Qt::WindowMinMaxButtonsHint, 0, true);
    EXPECT_TRUE(window.windowFlags().testFlag(Qt::FramelessWindowHint));
    EXPECT_FALSE(window.windowFlags().testFlag(Qt::WindowTitleHint));
    EXPECT_TRUE(window.windowFlags().testFlag(Qt::BypassWindowManagerHint));
    EXPECT_EQ(window.level(), 101);
    EXPECT_TRUE(window.canBecomeKeyWindow());
    EXPECT_TRUE(window.testAttribute(Qt::WA_TranslucentBackground));
    EXPECT_EQ(window.windowOpacity(), 1.0);
    EXPECT_EQ(window.frame(), QRectF(10, 20, 300, 200));
    EXPECT_FALSE(window.isVisible());
}

TEST_F(RecorderWndCtrl, DraggingStoresTheRectangle)
{
    overlay.placeWindow();
    QSignalSpy told(&options, &VNOption::offsetXChanged);
    drag({ 500, 500 }, { -30, 10 });
    EXPECT_EQ(options.selectedRect(), QRectF(290, 160, 800, 600));
    EXPECT_EQ(told.size(), 1);
}

TEST_F(RecorderWndCtrl, FrameAtTheLowerLeftIsTheRectangleThere)
{
    overlay.window()->setFrame({ -8, -8, 500, 400 });
    overlay.VNRecorderViewWindowFrameDidChanged(*overlay.recorderView());
    EXPECT_EQ(options.selectedRect(), QRectF(0, 0, 484, 384));
}

TEST_F(RecorderWndCtrl, WithoutWindowTheFrameReadsAsZeros)
{
    VNRecoderWindow *window = overlay.window();
    overlay.setWindow(nullptr);
    overlay.VNRecorderViewWindowFrameDidChanged(*overlay.recorderView());
    EXPECT_EQ(options.selectedRect(), QRectF(8, 8, -16, -16));
    overlay.placeWindow();
    overlay.reloadData();
    overlay.setWindow(window);
}

TEST_F(RecorderWndCtrl, ChangeWithoutOptionsIsLost)
{
    overlay.setOptions(nullptr);
    overlay.VNRecorderViewWindowFrameDidChanged(*overlay.recorderView());
    EXPECT_EQ(overlay.options(), nullptr);
}

TEST_F(RecorderWndCtrl, PlacesTheWindowAsTheOptionsAsk)
{
    options.setSelectedRect({ 100, 50, 300, 200 });
    overlay.placeWindow();
    EXPECT_TRUE(overlay.window()->isVisible());
    EXPECT_EQ(overlay.window()->frame(), QRectF(92, 42, 316, 216));
    options.setRecordRegion(0);
    overlay.placeWindow();
    EXPECT_FALSE(overlay.window()->isVisible());
    options.logoContext()->setLogoValidate(true);
    overlay.placeWindow();
    EXPECT_TRUE(overlay.window()->isVisible());
    EXPECT_EQ(overlay.window()->frame(), QRectF(-8, -8, 1456, 916));
    overlay.setOptions(nullptr);
    overlay.placeWindow();
    EXPECT_FALSE(overlay.window()->isVisible());
}

TEST_F(RecorderWndCtrl, TypedNumberMovesTheVisibleWindow)
{
    overlay.placeWindow();
    options.setOffsetX(7);
    options.setHeight(300);
    EXPECT_EQ(overlay.window()->frame(), QRectF(-1, 142, 816, 316));
    overlay.window()->orderOut();
    options.setOffsetX(100);
    EXPECT_EQ(overlay.window()->frame(), QRectF(-1, 142, 816, 316)) << "placed when it is shown";
    EXPECT_FALSE(overlay.window()->isVisible());
}

TEST_F(RecorderWndCtrl, TypedNumberLeavesTheFullDisplay)
{
    options.setRecordRegion(0);
    options.logoContext()->setLogoValidate(true);
    overlay.placeWindow();
    options.setOffsetX(7);
    EXPECT_EQ(overlay.window()->frame(), QRectF(-8, -8, 1456, 916));
}

TEST_F(RecorderWndCtrl, OptionsGivenBackMoveNothing)
{
    overlay.placeWindow();
    VNOption other;
    overlay.setOptions(&other);
    options.setOffsetX(7);
    EXPECT_EQ(overlay.window()->frame(), QRectF(312, 142, 816, 616));
}

TEST_F(RecorderWndCtrl, ARegionOfAnotherNumberIsTheFullDisplay)
{
    options.setRecordRegion(2);
    EXPECT_TRUE(overlay.recorderView()->isRecordFullScreen());
    overlay.placeWindow();
    EXPECT_FALSE(overlay.window()->isVisible());
    options.logoContext()->setLogoValidate(true);
    overlay.placeWindow();
    options.setOffsetX(7);
    EXPECT_EQ(overlay.window()->frame(), QRectF(-8, -8, 1456, 916));
}

TEST_F(RecorderWndCtrl, FullDisplayIsRegionZero)
{
    EXPECT_FALSE(overlay.recorderView()->isRecordFullScreen());
    options.setRecordRegion(0);
    EXPECT_TRUE(overlay.recorderView()->isRecordFullScreen());
    options.logoContext()->setLogoValidate(true);
    options.logoContext()->setLogoPosition({ 150, 100 });
    overlay.placeWindow();
    drag({ 160, 110 }, { 20, 5 });
    EXPECT_EQ(options.logoContext()->LogoPosition(), QPointF(170, 105)) << "only the logo can be dragged";
    const QRectF before = options.selectedRect();
    drag({ 700, 500 }, { 20, 5 });
    EXPECT_EQ(options.selectedRect(), before);
    EXPECT_EQ(overlay.window()->frame(), QRectF(-8, -8, 1456, 916));
}

TEST_F(RecorderWndCtrl, RecordingIsWhatTheDelegateAnswers)
{
    EXPECT_FALSE(overlay.recorderView()->isRecording());
    delegate.isRecording = true;
    EXPECT_TRUE(overlay.recorderView()->isRecording());
    EXPECT_EQ(delegate.asked, &overlay);
    overlay.placeWindow();
    drag({ 500, 500 }, { -30, 10 });
    EXPECT_EQ(options.selectedRect(), QRectF(320, 150, 800, 600));
    EXPECT_EQ(overlay.window()->frame(), QRectF(312, 142, 816, 616));
    overlay.setDelegate(nullptr);
    EXPECT_FALSE(overlay.recorderView()->isRecording());
}

TEST_F(RecorderWndCtrl, RecordingHidesTintAndHandlesAtOnce)
{
    overlay.placeWindow();
    const auto pixel
        = [this](int x, int y) { return overlay.recorderView()->grab().toImage().pixelColor(x, y); };
    EXPECT_EQ(pixel(400, 300).alpha(), 33);
    EXPECT_EQ(pixel(4, 1), QColor(0, 204, 255));
    delegate.isRecording = true;
    overlay.reloadData();
    EXPECT_EQ(pixel(400, 300).alpha(), 0);
    EXPECT_EQ(pixel(4, 1), QColor(0, 0, 0, 128)) << "the frame's dark outline alone";
    EXPECT_EQ(pixel(400, 4).alpha(), 255);
}

TEST_F(RecorderWndCtrl, APausedRecordingHasADashedFrame)
{
    overlay.placeWindow();
    delegate.isRecording = true;
    overlay.reloadData();
    const auto gaps = [this] {
        const QImage image = overlay.recorderView()->grab().toImage();
        int count = 0;
        for (int x = 2; x < image.width() - 2; ++x)
            count += image.pixelColor(x, 4).alpha() == 0 ? 1 : 0;
        return count;
    };
    EXPECT_EQ(gaps(), 0);
    delegate.isPaused = true;
    overlay.reloadData();
    EXPECT_GT(gaps(), 200);
    delegate.isPaused = false;
    overlay.reloadData();
    EXPECT_EQ(gaps(), 0);
}

TEST_F(RecorderWndCtrl, WindowDelegateAnswersTheOppositeOfRecording)
{
    EXPECT_TRUE(overlay.VNRecoderWindowCanBecameKeyWindow(*overlay.window()));
    delegate.isRecording = true;
    EXPECT_FALSE(overlay.VNRecoderWindowCanBecameKeyWindow(*overlay.window()));
    EXPECT_TRUE(overlay.window()->canBecomeKeyWindow()) << "the window does not ask";
    overlay.setDelegate(nullptr);
    EXPECT_FALSE(overlay.VNRecoderWindowCanBecameKeyWindow(*overlay.window()));
}

TEST_F(RecorderWndCtrl, FrameIsRedrawnWithTheKeyboardFocus)
{
    overlay.placeWindow();
    const auto frame = [this] { return overlay.recorderView()->grab().toImage().pixelColor(400, 4); };
    overlay.window()->becomeKey();
    QCoreApplication::processEvents();
    EXPECT_TRUE(overlay.window()->isActiveWindow());
    EXPECT_EQ(frame(), QColor(255, 255, 255));
    QWidget other;
    other.show();
    other.activateWindow();
    QCoreApplication::processEvents();
    EXPECT_EQ(frame(), QColor(204, 204, 204));
}

TEST_F(RecorderWndCtrl, FocusComesAndGoesWithoutAView)
{
    overlay.placeWindow();
    VNRecoderView *view = overlay.recorderView();
    overlay.setRecorderView(nullptr);
    const QSignalSpy came(overlay.window(), &VNRecoderWindow::windowDidBecomeKey);
    const QSignalSpy went(overlay.window(), &VNRecoderWindow::windowDidResignKey);
    overlay.window()->becomeKey();
    QCoreApplication::processEvents();
    QWidget other;
    other.show();
    other.activateWindow();
    QCoreApplication::processEvents();
    EXPECT_EQ(came.size(), 1);
    EXPECT_EQ(went.size(), 1);
    overlay.setRecorderView(view);
}

TEST_F(RecorderWndCtrl, FocusGoesToTheMainWindowWhenItIsHidden)
{
    QWidget main;
    main.show();
    overlay.window()->setWindowAbove(&main);
    overlay.placeWindow();
    overlay.window()->becomeKey();
    QCoreApplication::processEvents();
    overlay.window()->orderOut();
    QCoreApplication::processEvents();
    EXPECT_TRUE(main.isActiveWindow());
    overlay.window()->setWindowAbove(nullptr);
}

TEST_F(RecorderWndCtrl, OptionsThatDieAreNoLongerThere)
{
    {
        VNOption brief;
        brief.logoContext()->setLogoValidate(true);
        overlay.setOptions(&brief);
        overlay.placeWindow();
    }
    EXPECT_EQ(overlay.options(), nullptr);
    overlay.reloadData();
    overlay.placeWindow();
    EXPECT_FALSE(overlay.window()->isVisible());
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runOverlayTests(argc, argv);
}
