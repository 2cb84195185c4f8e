#include "main_window_test.h"
#include "overlay/VNRecoderView.h"
#include "overlay/VNRecoderWindow.h"
#include "overlay/VNRecorderWndCtrl.h"
#include "support/wait_until.h"

#include <QFont>
#include <QSignalSpy>

// What the overlay is told: where it stands, when it comes and goes, and when it is another picture.

namespace vornic {
namespace {

/// The application's delegate with the overlay, as the program has it.
class MainWindowOverlayTest : public testing::Test
{
protected:
    MainWindowOverlayTest() { options->setSelectedRect({ 100, 50, 300, 200 }); }
    ~MainWindowOverlayTest() override { overlay().orderOut(); }

    void launch(int recordRegion, bool logo)
    {
        options->setRecordRegion(recordRegion);
        options->logoContext()->setLogoValidate(logo);
        VNOption *const given = options.get();
        delegate = std::make_unique<VornicAppDelegate>(frontEnd.frontEnd(), std::move(options));
        delegate->setRecorderWndCtrl(&controller);
        delegate->applicationDidFinishLaunching();
        EXPECT_EQ(delegate->options(), given);
    }
    VNRecoderWindow &overlay() { return *controller.window(); }
    VNLogoContext &logo() { return *delegate->options()->logoContext(); }

    VNRecorderWndCtrl &controller = VNRecorderWndCtrl::shareRecorderWndCtrl();
    FakeFrontEnd frontEnd;
    std::unique_ptr<VNOption> options = std::make_unique<VNOption>(); ///< until the launch
    std::unique_ptr<VornicAppDelegate> delegate;
    const QRectF aroundRectangle { 92, 42, 316, 216 };
    const QRectF aroundDisplay { -8, -8, 1456, 916 };
};

TEST_F(MainWindowOverlayTest, TheLaunchPlacesItAroundTheRectangle)
{
    launch(1, false);
    EXPECT_TRUE(overlay().isVisible());
    EXPECT_EQ(overlay().frame(), aroundRectangle);
}

TEST_F(MainWindowOverlayTest, TheLaunchPlacesItAroundADisplayWithALogo)
{
    launch(0, true);
    EXPECT_TRUE(overlay().isVisible());
    EXPECT_EQ(overlay().frame(), aroundDisplay);
}

TEST_F(MainWindowOverlayTest, TheLaunchShowsNothingForADisplayWithoutALogo)
{
    launch(0, false);
    EXPECT_FALSE(overlay().isVisible());
}

TEST_F(MainWindowOverlayTest, ItFollowsTheChoiceOfTheRegion)
{
    launch(0, false);
    delegate->options()->setRecordRegion(1);
    EXPECT_TRUE(overlay().isVisible());
    EXPECT_EQ(overlay().frame(), aroundRectangle);
    delegate->options()->setRecordRegion(0);
    EXPECT_FALSE(overlay().isVisible());
}

TEST_F(MainWindowOverlayTest, ItFollowsTheLogo)
{
    launch(0, false);
    logo().setLogoValidate(true);
    EXPECT_TRUE(overlay().isVisible());
    EXPECT_EQ(overlay().frame(), aroundDisplay);
    logo().setLogoValidate(false);
    EXPECT_FALSE(overlay().isVisible());
}

TEST_F(MainWindowOverlayTest, ItIsDrawnAgainForAnotherFontOrPicture)
{
    launch(1, true);
    const QSignalSpy redrawn(controller.recorderView(), &VNRecoderView::redrawn);
    QFont font("DejaVu Sans");
    font.setPixelSize(44);
    delegate->changeFont(font);
    EXPECT_EQ(redrawn.size(), 1);
    logo().setLogoType(1);
    const qsizetype before = redrawn.size();
    QImage picture(9, 6, QImage::Format_RGB32);
    picture.fill(Qt::red);
    delegate->setLogoImage(picture);
    EXPECT_GT(redrawn.size(), before);
}

TEST_F(MainWindowOverlayTest, ItGoesWithTheMainWindow)
{
    launch(1, false);
    MainWindow window(*delegate);
    window.show();
    EXPECT_TRUE(overlay().isVisible());
    window.close();
    EXPECT_FALSE(overlay().isVisible());
    EXPECT_FALSE(overlay().isOrderedIn()) << "it does not come back by itself";
}

TEST_F(MainWindowOverlayTest, ItIsDrawnAgainWhenARecordingBeginsAndEnds)
{
    const QTemporaryDir folder;
    launch(1, false);
    const auto inside = [this] { return controller.recorderView()->grab().toImage().pixelColor(150, 100); };
    QSignalSpy redrawn(controller.recorderView(), &VNRecoderView::redrawn);
    delegate->session().recordNow(folder.filePath("movie.mp4"));
    EXPECT_GT(redrawn.size(), 0) << "before anything else happens";
    EXPECT_EQ(inside().alpha(), 0) << "the tint is gone";
    ASSERT_TRUE(test::waitUntil([&] { return delegate->counts().framesGrabbed > 0; }));
    // The folder is shown just before the end, and the last progress told just behind it.
    qsizetype redrawnAtEnd = 0;
    frontEnd.onShown = [&] { redrawn.clear(); };
    frontEnd.onProgress = [&] { redrawnAtEnd = delegate->isRecording() ? 0 : redrawn.size(); };
    delegate->stopRecord();
    ASSERT_TRUE(test::waitUntil([&] { return !delegate->isRecording(); }));
    EXPECT_GT(redrawnAtEnd, 0);
    EXPECT_GT(inside().alpha(), 0);
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runWindowTests(argc, argv);
}
