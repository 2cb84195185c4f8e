#include "display/fake_display.h"
#include "gui_main.h"
#include "observing/key_path_binding.h"
#include "observing/key_path_observer.h"
#include "options/VNOption.h"
#include "told.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>

namespace vornic {
namespace {

using Names = QStringList;

class OptionTest : public testing::Test
{
protected:
    OptionTest() { showDisplay({ 1440, 900 }); }
    ~OptionTest() override { setMainDisplay(nullptr); }

    static void showDisplay(QSize size) { setMainDisplay(std::make_shared<FakeDisplay>(size)); }
    static void removeDisplay()
    {
        const auto display = std::make_shared<FakeDisplay>(QSize(1440, 900));
        display->setReport({ .size = QSize(0, 0) });
        setMainDisplay(display);
    }
};

TEST_F(OptionTest, FreshObjectHasItsDefaults)
{
    VNOption options;
    EXPECT_EQ(options.selectedRect(), QRectF(320, 150, 800, 600));
    EXPECT_EQ(options.recordRegion(), 0);
    EXPECT_TRUE(options.isRecordFullScreen());
    EXPECT_EQ(options.recordQuality(), 0);
    EXPECT_TRUE(options.showInFinderWhenFinished());
    EXPECT_FALSE(options.openRecordedWhenFinished());
    EXPECT_FALSE(options.enableAudio());
    EXPECT_EQ(options.logoContext()->LogoText(), "Sample Text");
}

TEST_F(OptionTest, DefaultRectangleIsNotClampedOnASmallDisplay)
{
    showDisplay({ 640, 481 });
    EXPECT_EQ(VNOption().selectedRect(), QRectF(-80, -59.5, 800, 600));
}

TEST_F(OptionTest, LogoContextIsMadeOnceAndKept)
{
    VNOption options;
    VNLogoContext *logo = options.logoContext();
    ASSERT_NE(logo, nullptr);
    EXPECT_EQ(options.logoContext(), logo);
}

TEST_F(OptionTest, PlainAccessorsStoreWhatTheyAreGiven)
{
    VNOption options;
    options.setRecordQuality(7);
    options.setEnableAudio(true);
    options.setShowInFinderWhenFinished(false);
    options.setOpenRecordedWhenFinished(true);
    options.setRecordRegion(-3);
    EXPECT_EQ(options.recordQuality(), 7);
    EXPECT_TRUE(options.enableAudio());
    EXPECT_FALSE(options.showInFinderWhenFinished());
    EXPECT_TRUE(options.openRecordedWhenFinished());
    EXPECT_EQ(options.recordRegion(), -3);
    EXPECT_FALSE(options.isRecordFullScreen());
}

TEST_F(OptionTest, QualityHasTheNumbersOfTheProperty)
{
    VNOption options;
    EXPECT_EQ(options.quality(), RecordQuality::High);
    options.setRecordQuality(1);
    EXPECT_EQ(options.quality(), RecordQuality::Medium);
    options.setRecordQuality(7);
    EXPECT_NE(options.quality(), RecordQuality::High);
    EXPECT_NE(options.quality(), RecordQuality::Medium);
}

TEST_F(OptionTest, OnlyRegionOneRecordsTheRectangle)
{
    VNOption options;
    for (const int region : { -3, 0, 2 }) {
        options.setRecordRegion(region);
        EXPECT_FALSE(options.recordsRectangle()) << region;
    }
    options.setRecordRegion(1);
    EXPECT_TRUE(options.recordsRectangle());
}

TEST_F(OptionTest, FullScreenIsRegionZero)
{
    VNOption options;
    options.setIsRecordFullScreen(false);
    EXPECT_EQ(options.recordRegion(), 1);
    EXPECT_FALSE(options.isRecordFullScreen());
    options.setRecordRegion(0);
    EXPECT_TRUE(options.isRecordFullScreen());
    options.setRecordRegion(1);
    options.setIsRecordFullScreen(true);
    EXPECT_EQ(options.recordRegion(), 0);
}

TEST_F(OptionTest, BoundsFollowTheOtherMembers)
{
    VNOption options;
    options.setSelectedRect({ 100, 50, 700, 400 });
    EXPECT_EQ(options.minWidth(), 160);
    EXPECT_EQ(options.minHeight(), 120);
    EXPECT_EQ(options.minOffsetX(), 0);
    EXPECT_EQ(options.minOffsetY(), 0);
    EXPECT_EQ(options.maxWidth(), 1340);
    EXPECT_EQ(options.maxHeight(), 850);
    EXPECT_EQ(options.maxOffsetX(), 740);
    EXPECT_EQ(options.maxOffsetY(), 500);
}

struct ClampRow {
    const char *name;
    QRectF before;
    void (VNOption::*set)(double);
    double value;
    QRectF after;
};

class OptionClampTest : public OptionTest, public testing::WithParamInterface<ClampRow>
{
};

TEST_P(OptionClampTest, StoresWithinTheBoundsAndLeavesTheOtherMembers)
{
    const ClampRow &row = GetParam();
    VNOption options;
    options.setSelectedRect(row.before);
    (options.*row.set)(row.value);
    EXPECT_EQ(options.offsetX(), row.after.x());
    EXPECT_EQ(options.offsetY(), row.after.y());
    EXPECT_EQ(options.width(), row.after.width());
    EXPECT_EQ(options.height(), row.after.height());
}

constexpr double infinity = std::numeric_limits<double>::infinity();

INSTANTIATE_TEST_SUITE_P(
    Rows,
    OptionClampTest,
    testing::Values(
        ClampRow { "Width", { 320, 150, 800, 600 }, &VNOption::setWidth, 500.5, { 320, 150, 500.5, 600 } },
        ClampRow {
            "WidthTooSmall", { 320, 150, 800, 600 }, &VNOption::setWidth, 100, { 320, 150, 160, 600 } },
        ClampRow {
            "WidthTooLarge", { 1000, 150, 100, 600 }, &VNOption::setWidth, 600, { 1000, 150, 440, 600 } },
        ClampRow {
            "WidthUpperBoundWins", { 1350, 0, 50, 600 }, &VNOption::setWidth, 100, { 1350, 0, 90, 600 } },
        ClampRow {
            "WidthBeyondTheDisplay", { 1500, 0, 50, 600 }, &VNOption::setWidth, 200, { 1500, 0, -60, 600 } },
        ClampRow {
            "WidthInfinite", { 320, 150, 800, 600 }, &VNOption::setWidth, infinity, { 320, 150, 1120, 600 } },
        ClampRow {
            "HeightTooSmall", { 320, 150, 800, 600 }, &VNOption::setHeight, 50, { 320, 150, 800, 120 } },
        ClampRow {
            "HeightTooLarge", { 320, 150, 800, 600 }, &VNOption::setHeight, 800, { 320, 150, 800, 750 } },
        ClampRow {
            "HeightUpperBoundWins", { 0, 850, 800, 9 }, &VNOption::setHeight, 60, { 0, 850, 800, 50 } },
        ClampRow {
            "OffsetX", { 320, 150, 800, 600 }, &VNOption::setOffsetX, 12.25, { 12.25, 150, 800, 600 } },
        ClampRow {
            "OffsetXNegative", { 320, 150, 800, 600 }, &VNOption::setOffsetX, -20, { 0, 150, 800, 600 } },
        ClampRow {
            "OffsetXTooLarge", { 320, 150, 800, 600 }, &VNOption::setOffsetX, 641, { 640, 150, 800, 600 } },
        ClampRow {
            "OffsetXOfATooWideOne", { 0, 0, 1500, 600 }, &VNOption::setOffsetX, 5, { -60, 0, 1500, 600 } },
        ClampRow {
            "OffsetYNegative", { 320, 150, 800, 600 }, &VNOption::setOffsetY, -1, { 320, 0, 800, 600 } },
        ClampRow {
            "OffsetYTooLarge", { 320, 150, 800, 600 }, &VNOption::setOffsetY, 5000, { 320, 300, 800, 600 } }),
    [](const auto &row) { return std::string(row.param.name); });

TEST_F(OptionTest, SelectedRectIsStoredUnchanged)
{
    VNOption options;
    const QRectF partlyOff(-100.5, 850, 2000, 3);
    options.setSelectedRect(partlyOff);
    EXPECT_EQ(options.offsetX(), -100.5);
    EXPECT_EQ(options.offsetY(), 850);
    EXPECT_EQ(options.width(), 2000);
    EXPECT_EQ(options.height(), 3);
}

TEST_F(OptionTest, WithoutADisplayTheUpperBoundsAreStored)
{
    removeDisplay();
    EXPECT_EQ(VNOption::screenFrame(), QRectF(0, 0, 0, 0));
    VNOption options;
    EXPECT_EQ(options.selectedRect(), QRectF(-400, -300, 800, 600));
    options.setOffsetX(10);
    EXPECT_EQ(options.offsetX(), -800);
    options.setWidth(900);
    EXPECT_EQ(options.width(), 800);
    options.setOffsetY(10);
    EXPECT_EQ(options.offsetY(), -600);
    options.setSelectedRect({ 0, 0, 800, 600 });
    options.setHeight(500);
    EXPECT_EQ(options.height(), 0);
}

TEST_F(OptionTest, ANewDisplaySizeCountsAtOnce)
{
    VNOption options;
    options.setSelectedRect({ 700, 0, 700, 600 });
    showDisplay({ 1000, 700 });
    EXPECT_EQ(VNOption::screenFrame(), QRectF(0, 0, 1000, 700));
    EXPECT_EQ(VNOption::screenWidth(), 1000);
    EXPECT_EQ(VNOption::screenHeight(), 700);
    EXPECT_EQ(options.selectedRect(), QRectF(700, 0, 700, 600));
    EXPECT_EQ(options.maxWidth(), 300);
    options.setWidth(700);
    EXPECT_EQ(options.width(), 300);
    EXPECT_EQ(VNOption::convertScreenPointToQuartz({ 1, 2 }), QPointF(1, 698));
}

TEST_F(OptionTest, PointsFlipAboutTheMainDisplaysTop)
{
    EXPECT_EQ(VNOption::convertScreenPointToQuartz({ 3, 100 }), QPointF(3, 800));
    EXPECT_EQ(VNOption::convertScreenPointFromQuartz({ 3, 800 }), QPointF(3, 100));
    EXPECT_EQ(VNOption::convertScreenPointToQuartz({ -5, 1000 }),
              QPointF(-5, -100)); // above the main display
}

TEST_F(OptionTest, RectanglesFlipAboutTheMainDisplaysTop)
{
    EXPECT_EQ(VNOption::convertScreenRectToQuartz({ 100, 100, 200, 50 }), QRectF(100, 750, 200, 50));
    EXPECT_EQ(VNOption::convertScreenRectFromQuartz({ 100, 750, 200, 50 }), QRectF(100, 100, 200, 50));
    EXPECT_EQ(VNOption::convertScreenRectToQuartz({ 0, 0, 1440, 900 }), QRectF(0, 0, 1440, 900));
}

const Names everyGeometryKey { "height",  "maxHeight", "maxOffsetX",   "maxOffsetY", "maxWidth",
                               "offsetX", "offsetY",   "selectedRect", "width" };

TEST_F(OptionTest, AnyGeometryKeyTellsAllOfThemOnce)
{
    VNOption options;
    Told told(&options);
    options.setSelectedRect({ 1, 2, 300, 400 });
    EXPECT_EQ(told.take(), everyGeometryKey);
    options.setOffsetX(5);
    EXPECT_EQ(told.take(), everyGeometryKey);
    options.setOffsetY(5);
    EXPECT_EQ(told.take(), everyGeometryKey);
    options.setWidth(500);
    EXPECT_EQ(told.take(), everyGeometryKey);
    options.setHeight(500);
    EXPECT_EQ(told.take(), everyGeometryKey);
}

TEST_F(OptionTest, RecordRegionTellsFullScreenAndBack)
{
    VNOption options;
    options.setIsRecordFullScreen(false);
    Told told(&options);
    options.setRecordRegion(0);
    EXPECT_EQ(told.take(), (Names { "isRecordFullScreen", "recordRegion" }));
    options.setIsRecordFullScreen(false);
    EXPECT_EQ(told.take(), (Names { "isRecordFullScreen", "recordRegion" }));
}

TEST_F(OptionTest, TheOtherKeysTellThemselvesOnly)
{
    VNOption options;
    Told told(&options);
    options.setRecordQuality(1);
    EXPECT_EQ(told.take(), Names { "recordQuality" });
    options.setEnableAudio(true);
    EXPECT_EQ(told.take(), Names { "enableAudio" });
    options.setShowInFinderWhenFinished(false);
    EXPECT_EQ(told.take(), Names { "showInFinderWhenFinished" });
    options.setOpenRecordedWhenFinished(true);
    EXPECT_EQ(told.take(), Names { "openRecordedWhenFinished" });
}

TEST_F(OptionTest, DeclaresItsDependencies)
{
    using Keys = QByteArrayList;
    EXPECT_EQ(VNOption::keyPathsForValuesAffectingIsRecordFullScreen(), Keys { "recordRegion" });
    EXPECT_EQ(VNOption::keyPathsForValuesAffectingWidth(), Keys { "selectedRect" });
    EXPECT_EQ(VNOption::keyPathsForValuesAffectingHeight(), Keys { "selectedRect" });
    EXPECT_EQ(VNOption::keyPathsForValuesAffectingOffsetX(), Keys { "selectedRect" });
    EXPECT_EQ(VNOption::keyPathsForValuesAffectingOffsetY(), Keys { "selectedRect" });
    EXPECT_EQ(VNOption::keyPathsForValuesAffectingMaxWidth(), Keys { "offsetX" });
    EXPECT_EQ(VNOption::keyPathsForValuesAffectingMaxHeight(), Keys { "offsetY" });
    EXPECT_EQ(VNOption::keyPathsForValuesAffectingMaxOffsetX(), Keys { "width" });
    EXPECT_EQ(VNOption::keyPathsForValuesAffectingMaxOffsetY(), Keys { "height" });
    EXPECT_EQ(VNOption::keyPathsForValuesAffectingSelectedRect(),
              (Keys { "height", "width", "offsetX", "offsetY" }));
}

/// Holds options the way the application does, with gates that depend on them.
class Delegate : public ObservableObject
{
    Q_OBJECT
    Q_PROPERTY(int state READ state WRITE setState NOTIFY stateChanged)
    Q_PROPERTY(vornic::VNOption *options READ options CONSTANT)
    Q_PROPERTY(
        bool allowedEditRecordRegion READ allowedEditRecordRegion NOTIFY allowedEditRecordRegionChanged)
    Q_PROPERTY(bool allowedEditFont READ allowedEditFont NOTIFY allowedEditFontChanged)
public:
    Delegate()
    {
        declareDependency("allowedEditRecordRegion", { "state", "options.recordRegion" });
        declareDependency("allowedEditFont",
                          { "state", "options.logoContext.LogoValidate", "options.logoContext.LogoType" });
    }
    [[nodiscard]] int state() const { return m_state; }
    void setState(int state)
    {
        m_state = state;
        notifyChanged({ "state" });
    }
    [[nodiscard]] VNOption *options() { return &m_options; }
    [[nodiscard]] bool allowedEditRecordRegion() const
    {
        return m_state == 0 && m_options.recordsRectangle();
    }
    [[nodiscard]] bool allowedEditFont()
    {
        const VNLogoContext *logo = m_options.logoContext();
        return m_state == 0 && logo->LogoValidate() && logo->type() == LogoType::Text;
    }

signals:
    void stateChanged();
    void allowedEditRecordRegionChanged();
    void allowedEditFontChanged();

private:
    int m_state = 0;
    VNOption m_options;
};

TEST_F(OptionTest, ADelegatesGatesFollowKeyPaths)
{
    Delegate delegate;
    Told told(&delegate);
    delegate.options()->setRecordRegion(1);
    EXPECT_EQ(told.take(), Names { "allowedEditRecordRegion" });
    EXPECT_TRUE(delegate.allowedEditRecordRegion());
    delegate.options()->logoContext()->setLogoValidate(true);
    EXPECT_EQ(told.take(), Names { "allowedEditFont" });
    EXPECT_TRUE(delegate.allowedEditFont());
    delegate.options()->logoContext()->setIsLogoTypeText(false);
    EXPECT_EQ(told.take(), Names { "allowedEditFont" });
    EXPECT_FALSE(delegate.allowedEditFont());
    delegate.setState(1);
    EXPECT_EQ(told.take(), (Names { "allowedEditFont", "allowedEditRecordRegion", "state" }));
}

TEST_F(OptionTest, ALogoPropertyIsReachedByItsKeyPath)
{
    Delegate delegate;
    KeyPathObserver type(&delegate, "options.logoContext.LogoType");
    int told = 0;
    QObject::connect(&type, &KeyPathObserver::valueChanged, [&] { ++told; });
    EXPECT_EQ(type.value().toInt(), 0);
    delegate.options()->logoContext()->setLogoType(1);
    EXPECT_EQ(told, 1);
    EXPECT_EQ(type.value().toInt(), 1);
    EXPECT_TRUE(type.setValue(0));
    EXPECT_EQ(delegate.options()->logoContext()->LogoType(), 0);
}

/// A number field, as the main window has them.
class NumberField : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int value MEMBER m_value NOTIFY valueChanged)
signals:
    void valueChanged();

private:
    int m_value = 0;
};

TEST_F(OptionTest, BoundFieldsFollowTheOverlayAndTheClamping)
{
    Delegate delegate;
    NumberField width;
    NumberField most;
    new KeyPathBinding(&width, "value", &delegate, "options.width");
    new KeyPathBinding(&most, "value", &delegate, "options.maxWidth");
    EXPECT_EQ(width.property("value"), 800);
    EXPECT_EQ(most.property("value"), 1120);
    delegate.options()->setSelectedRect({ 40, 0, 484, 384 });
    EXPECT_EQ(width.property("value"), 484);
    EXPECT_EQ(most.property("value"), 1400);
    width.setProperty("value", 3);
    EXPECT_EQ(delegate.options()->width(), 160);
    EXPECT_EQ(width.property("value"), 160);
    most.setProperty("value", 3);
    EXPECT_EQ(most.property("value"), 1400);
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runTestsWithFonts(argc, argv);
}

#include "tst_option.moc"
