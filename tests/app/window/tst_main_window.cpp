#include "app/window/unfinished_line.h"
#include "base/keyed_archive.h"
#include "controls/VNCheckCell.h"
#include "controls/VNColorWell.h"
#include "controls/VNComboboxView.h"
#include "controls/VNDragDropImageView.h"
#include "controls/VNRadioCell.h"
#include "controls/VNSliderCell.h"
#include "controls/VNTextFieldCell.h"
#include "controls/duration_field.h"
#include "controls/number_field.h"
#include "main_window_test.h"

#include <QAction>
#include <QColorDialog>
#include <QLabel>
#include <QMenuBar>
#include <QSignalSpy>
#include <QTranslator>
#include <QtTest>

#include <algorithm>

namespace vornic {
namespace {

TEST_F(MainWindowTest, TheRegionFollowsTheOptionsBothWays)
{
    auto &full = control<VNRadioCell>("chkFullScreen");
    auto &part = control<VNRadioCell>("chkPartScreen");
    options().setRecordRegion(0);
    EXPECT_TRUE(full.isChecked());
    EXPECT_FALSE(part.isChecked());
    part.click();
    EXPECT_EQ(options().recordRegion(), 1);
    options().setRecordRegion(0);
    options().setRecordRegion(1);
    EXPECT_TRUE(part.isChecked());
    full.click();
    EXPECT_EQ(options().recordRegion(), 0);
}

TEST_F(MainWindowTest, NumbersFollowTheOverlayAndMoveIt)
{
    options().setRecordRegion(1);
    options().setSelectedRect({ 10, 20, 300, 200 });
    EXPECT_EQ(control<NumberField>("offsetXField").value(), 10);
    EXPECT_EQ(control<NumberField>("offsetYField").value(), 20);
    EXPECT_EQ(control<NumberField>("widthField").value(), 300);
    EXPECT_EQ(control<NumberField>("heightField").value(), 200);
    control<NumberField>("widthField").setValue(410);
    EXPECT_EQ(options().selectedRect(), QRectF(10, 20, 410, 200));
    // What the options refuse is not shown either.
    control<NumberField>("widthField").setValue(99'999);
    EXPECT_EQ(control<NumberField>("widthField").value(), options().width());
    EXPECT_LE(options().width(), 1440);
}

TEST_F(MainWindowTest, TheLogoFollowsTheOptionsBothWays)
{
    logo().setLogoValidate(true);
    control<QLineEdit>("logoTextField").setText("mine");
    EXPECT_EQ(logo().LogoText(), "mine");
    control<VNSliderCell>("rotationSlider").setDoubleValue(30);
    EXPECT_EQ(logo().LogoRotation(), 30);
    EXPECT_EQ(control<NumberField>("rotationField").value(), 30);
    control<NumberField>("opacityField").setValue(50);
    EXPECT_EQ(logo().LogoTransparency(), 128);
    EXPECT_EQ(control<VNSliderCell>("opacitySlider").doubleValue(), 50);
    control<NumberField>("scaleField").setValue(1.5);
    EXPECT_EQ(logo().LogoScale(), 1.5);
    // What was stored beyond the ends of slider and field is not pulled back by them.
    logo().setLogoScale(9);
    EXPECT_EQ(logo().LogoScale(), 9);
    EXPECT_EQ(control<NumberField>("scaleField").value(), 4);
}

TEST_F(MainWindowTest, TheLogosPlaceCountsFromTheCornerOfWhatIsRecorded)
{
    logo().setLogoPosition({ 33, 44 }); // of the overlay, which begins 8 pixels further out
    EXPECT_EQ(control<NumberField>("logoXField").value(), 25);
    EXPECT_EQ(control<NumberField>("logoYField").value(), 36);
    control<NumberField>("logoXField").setValue(0);
    control<NumberField>("logoYField").setValue(0);
    EXPECT_EQ(logo().LogoPosition(), QPointF(8, 8));
}

TEST_F(MainWindowTest, SlidersAndTheirFieldsHaveTheSameRange)
{
    for (const char *number : { "scale", "opacity", "rotation" }) {
        const auto &slider = control<VNSliderCell>((QByteArray(number) + "Slider").constData());
        const auto &field = control<NumberField>((QByteArray(number) + "Field").constData());
        EXPECT_DOUBLE_EQ(slider.minValue(), field.minimum()) << number;
        EXPECT_DOUBLE_EQ(slider.maxValue(), field.maximum()) << number;
    }
}

TEST_F(MainWindowTest, NumbersShowTheirUnit)
{
    options().setSelectedRect({ 10, 20, 300, 200 });
    logo().setLogoScale(1.5);
    logo().setLogoTransparency(255);
    logo().setLogoRotation(-30);
    EXPECT_EQ(control<NumberField>("widthField").text(), "300 px");
    EXPECT_EQ(control<NumberField>("scaleField").text(), "1.50 ×");
    EXPECT_EQ(control<NumberField>("opacityField").text(), "100 %");
    EXPECT_EQ(control<NumberField>("rotationField").text(), "-30°");
    for (const char *name : { "offsetXField", "offsetYField", "topField", "heightField", "logoXField" })
        EXPECT_TRUE(control<NumberField>(name).text().endsWith(" px")) << name;
}

TEST_F(MainWindowTest, TheTopEdgeIsShownAndMovesTheRectangle)
{
    options().setRecordRegion(1);
    options().setSelectedRect({ 10, 20, 300, 200 });
    EXPECT_EQ(control<NumberField>("topField").value(), 900 - 20 - 200);
    control<NumberField>("topField").setValue(0);
    EXPECT_EQ(options().selectedRect(), QRectF(10, 700, 300, 200));
    EXPECT_EQ(control<NumberField>("offsetYField").value(), 700);
}

TEST_F(MainWindowTest, UsualSizesAreChosenFromAList)
{
    options().setRecordRegion(1);
    options().setSelectedRect({ 10, 20, 300, 200 });
    auto &sizes = control<VNComboboxView>("sizeView");
    EXPECT_EQ(sizes.stringValue(), "Other");
    QTest::keyClick(&sizes, Qt::Key_Down);
    EXPECT_EQ(options().selectedRect().size(), QSizeF(1280, 720));
    EXPECT_EQ(sizes.stringValue(), "1280 × 720");
    // Nothing has the size "Other".
    QTest::keyClick(&sizes, Qt::Key_Home);
    EXPECT_EQ(sizes.stringValue(), "1280 × 720");
    control<NumberField>("widthField").setValue(640);
    EXPECT_EQ(sizes.stringValue(), "Other");
}

TEST_F(MainWindowTest, ColoursGoToTheLogoThroughTheWells)
{
    EXPECT_EQ(control<VNColorWell>("mLogoFontFillColorWell").color(), logo().LogoFontFillColor());
    EXPECT_EQ(control<VNColorWell>("mLogoFontStrokeColorWell").color(), logo().LogoFontStrokeColor());
    QColorDialog panel;
    panel.setCurrentColor(Qt::magenta);
    control<VNColorWell>("mLogoFontFillColorWell").changeColor(panel);
    EXPECT_EQ(logo().LogoFontFillColor(), QColor(Qt::magenta));
    panel.setCurrentColor(Qt::cyan);
    control<VNColorWell>("mLogoFontStrokeColorWell").changeColor(panel);
    EXPECT_EQ(logo().LogoFontStrokeColor(), QColor(Qt::cyan));
}

TEST_F(MainWindowTest, APictureGoesToTheLogoThroughTheWellAndBack)
{
    logo().setLogoValidate(true);
    control<VNRadioCell>("chkLogoImage").click();
    EXPECT_EQ(logo().LogoType(), 1);
    EXPECT_TRUE(widget("logoImageView").isVisible());
    EXPECT_FALSE(widget("logoTextField").isVisible());
    const QTemporaryDir folder;
    QImage picture(9, 6, QImage::Format_RGB32);
    picture.fill(Qt::red);
    ASSERT_TRUE(picture.save(folder.filePath("logo.png")));
    control<VNDragDropImageView>("logoImageView").loadFile(folder.filePath("logo.png"));
    EXPECT_EQ(logo().getNSImage().size(), QSize(9, 6));
    picture = picture.scaled(12, 12);
    logo().setNSImage(picture); // dropped on the overlay
    EXPECT_EQ(control<VNDragDropImageView>("logoImageView").image()->size(), QSize(12, 12));
    QFile broken(folder.filePath("broken.png"));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("none");
    broken.close();
    control<VNDragDropImageView>("logoImageView").loadFile(broken.fileName());
    EXPECT_EQ(frontEnd.alerts.size(), 1);
    EXPECT_EQ(logo().getNSImage().size(), QSize(12, 12));
}

TEST_F(MainWindowTest, APictureDroppedOnTheWellReachesTheLogoWithItsFile)
{
    logo().setLogoValidate(true);
    logo().setLogoType(1);
    QTemporaryDir folder;
    QFile file(folder.filePath("logo.jpg"));
    QImage picture(300, 200, QImage::Format_RGB32);
    picture.fill(Qt::red);
    ASSERT_TRUE(picture.save(file.fileName()) && file.open(QIODevice::ReadOnly));
    QMimeData dragged;
    dragged.setUrls({ QUrl::fromLocalFile(file.fileName()) });
    const QDropEvent drop({ 5, 5 }, Qt::CopyAction, &dragged, Qt::LeftButton, Qt::NoModifier);
    control<VNDragDropImageView>("logoImageView").performDragOperation(drop);
    EXPECT_EQ(logo().getNSImage().size(), picture.size());
    EXPECT_TRUE(archivedData(logo()).contains(file.readAll()));
}

TEST_F(MainWindowTest, TheLogosTextBecomesAPictureInItsPlace)
{
    logo().setLogoText(QStringLiteral(" "));
    delegate.makePictureOfLogoText();
    EXPECT_TRUE(logo().isLogoTypeText()) << "there is nothing to be seen of it";
    logo().setLogoText(QStringLiteral("Gr\u00FC\u00DFe"));
    logo().setLogoScale(2);
    logo().setLogoRotation(90);
    const PictureOfText expected = logo().pictureOfText();
    ASSERT_FALSE(expected.image.isNull());
    delegate.makePictureOfLogoText();
    EXPECT_EQ(logo().LogoType(), 1);
    EXPECT_EQ(logo().getNSImage(), expected.image);
    EXPECT_EQ(logo().LogoPosition(), expected.position);
    EXPECT_EQ(logo().LogoScale(), 1);
    EXPECT_EQ(logo().LogoRotation(), 90);
}

TEST_F(MainWindowTest, ListsHaveTheirItemsAndActions)
{
    auto &quality = control<VNComboboxView>("mVideoQualityView");
    EXPECT_EQ(quality.numberOfMenuItems(), 2);
    EXPECT_EQ(quality.stringValue(), "High");
    QTest::keyClick(&quality, Qt::Key_Down);
    EXPECT_EQ(quality.stringValue(), "Medium");
    EXPECT_EQ(options().recordQuality(), 1);

    auto &devices = control<VNComboboxView>("mAudioDevicesView");
    EXPECT_EQ(devices.numberOfMenuItems(), 2);
    EXPECT_FALSE(devices.isEnabled());
    control<VNCheckCell>("chkEnableAudio").click();
    EXPECT_TRUE(options().enableAudio());
    EXPECT_TRUE(devices.isEnabled());
    QTest::keyClick(&devices, Qt::Key_Down);
    EXPECT_EQ(delegate.audioDevicesView().stringValue(), "Monitor of Speakers");
}

TEST_F(MainWindowTest, WhatTheSystemPlaysHasABoxAndEachSoundALevel)
{
    auto &box = control<VNCheckCell>("chkSystemSound");
    auto &input = control<VNSliderCell>("inputLevelSlider");
    auto &system = control<VNSliderCell>("systemLevelSlider");
    EXPECT_FALSE(box.isEnabled() || input.isEnabled() || system.isEnabled()) << "without sound";
    control<VNCheckCell>("chkEnableAudio").click();
    EXPECT_TRUE(box.isEnabled() && input.isEnabled());
    EXPECT_FALSE(system.isEnabled());
    box.click();
    EXPECT_TRUE(options().recordsSystemSound());
    EXPECT_TRUE(system.isEnabled());
    EXPECT_EQ(system.doubleValue(), 100);
    EXPECT_EQ(system.maxValue(), 150);
    QTest::keyClick(&system, Qt::Key_Right);
    EXPECT_EQ(options().systemLevel(), 105);
    EXPECT_TRUE(system.toolTip().contains("105 %")) << system.toolTip().toStdString();
    options().setInputLevel(50);
    EXPECT_EQ(input.doubleValue(), 50);
    EXPECT_TRUE(input.toolTip().contains("50 %"));
    EXPECT_EQ(options().inputLevel(), 50);
    control<VNCheckCell>("chkEnableAudio").click();
    EXPECT_FALSE(box.isEnabled() || input.isEnabled() || system.isEnabled());
}

TEST_F(MainWindowTest, ARecordingCanBeGivenALength)
{
    auto &box = control<VNCheckCell>("chkStopAfter");
    auto &field = control<DurationField>("stopAfterField");
    EXPECT_FALSE(box.isChecked() || field.isEnabled());
    EXPECT_EQ(field.text(), "0:10:00");
    box.click();
    EXPECT_TRUE(options().stopsAfterTime() && field.isEnabled());
    const auto type = [&field](const char *text) {
        field.setFocus();
        field.selectAll();
        QTest::keyClicks(&field, text);
        QTest::keyClick(&field, Qt::Key_Return);
        return field.text();
    };
    EXPECT_EQ(type("90"), "0:01:30");
    EXPECT_EQ(options().stopAfter(), 90);
    EXPECT_EQ(type("2:00"), "0:02:00");
    EXPECT_EQ(type("36:00:05"), "36:00:05") << "more than a day";
    EXPECT_EQ(options().stopAfter(), 36 * 3600 + 5);
    EXPECT_EQ(type("0:00:00"), "36:00:05") << "that is no length";
    EXPECT_EQ(type("100:00:00"), "36:00:05");
    EXPECT_EQ(type("1x"), "0:00:01") << "a letter is not taken";
    options().setStopAfter(3600);
    EXPECT_EQ(field.text(), "1:00:00");
    box.click();
    EXPECT_FALSE(options().stopsAfterTime() || field.isEnabled());
}

TEST_F(MainWindowTest, TheArrowsChangeThePartOfTheLengthThatTheInsertionPointIsIn)
{
    control<VNCheckCell>("chkStopAfter").click();
    auto &field = control<DurationField>("stopAfterField");
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    field.setFocus();
    field.selectAll();
    QTest::keyClick(&field, Qt::Key_Up);
    EXPECT_EQ(field.text(), "0:11:00") << "minutes, where all is selected";
    QTest::keyClick(&field, Qt::Key_Home);
    QTest::keyClick(&field, Qt::Key_Up);
    EXPECT_EQ(field.text(), "1:11:00");
    QTest::keyClick(&field, Qt::Key_End);
    QTest::keyClick(&field, Qt::Key_Up);
    EXPECT_EQ(field.text(), "1:11:01");
}

TEST_F(MainWindowTest, WhatCannotBeUsedLooksSo)
{
    const QList<const char *> controls { "offsetXField",
                                         "widthLabel",
                                         "chkLogoText",
                                         "logoTextField",
                                         "fontButton",
                                         "mLogoFontFillColorWell",
                                         "mLogoFontStrokeColorWell",
                                         "scaleSlider",
                                         "logoXField" };
    options().setRecordRegion(0);
    logo().setLogoValidate(false);
    for (const char *name : controls)
        EXPECT_FALSE(widget(name).isEnabled()) << name;
    options().setRecordRegion(1);
    control<VNCheckCell>("chkLogo").click();
    for (const char *name : controls)
        EXPECT_TRUE(widget(name).isEnabled()) << name;
    EXPECT_FALSE(widget("logoImageView").isEnabled());
    logo().setLogoType(1);
    EXPECT_FALSE(widget("mLogoFontFillColorWell").isEnabled());
    EXPECT_TRUE(widget("logoImageView").isEnabled());
}

TEST_F(MainWindowTest, ItemsBearTheProductsName)
{
    EXPECT_EQ(window->windowTitle(), "Vornic");
    EXPECT_EQ(control<QAction>("mAboutApp").text(), "About Vornic");
    EXPECT_EQ(control<QAction>("mHideApp").text(), "Hide Vornic");
    EXPECT_EQ(control<QAction>("mQuitApp").text(), "Quit Vornic");
    EXPECT_EQ(control<QAction>("helpMenu").text(), "Vornic Help");
}

TEST_F(MainWindowTest, TheRecordButtonRecordsAndTheQuitItemCloses)
{
    frontEnd.path.reset();
    const QSignalSpy refused(&delegate.session(), &RecordingSession::recordingRefused);
    QTest::keyClick(&widget("recordButton"), Qt::Key_Space);
    EXPECT_EQ(refused.size(), 1);
    window->record(true);
    EXPECT_EQ(options().recordRegion(), 0);
    window->record(false);
    EXPECT_EQ(options().recordRegion(), 1);
    EXPECT_EQ(refused.size(), 3);
    const QSignalSpy closed(window.get(), &MainWindow::closed);
    control<QAction>("mQuitApp").trigger();
    EXPECT_EQ(closed.size(), 1);
    EXPECT_FALSE(window->isVisible());
}

/// Every text half as long again.
class LongTranslator : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char *, const char *text, const char *, int) const override
    {
        const QString source = QString::fromUtf8(text);
        QString longer = source;
        while (longer.size() * 2 < source.size() * 3)
            longer += u'ö';
        return longer;
    }
};

/// What shows text or is worked with.
QList<QWidget *> leaves(const QWidget &window)
{
    QList<QWidget *> found;
    for (QWidget *child : window.findChildren<QWidget *>()) {
        const bool isWhole = qobject_cast<QLabel *>(child) || qobject_cast<QAbstractButton *>(child)
            || qobject_cast<VNComboboxView *>(child) || qobject_cast<VNColorWell *>(child)
            || qobject_cast<NumberField *>(child) || qobject_cast<VNSliderCell *>(child);
        const bool isInner = child->parentWidget()->inherits("vornic::NumberField")
            || child->parentWidget()->inherits("QAbstractSpinBox")
            || child->parentWidget()->inherits("QMenuBar");
        if (isWhole && !isInner && child->isVisible())
            found += child;
    }
    return found;
}

void expectNothingCutOffOrOverlapping(const QWidget &window)
{
    const QList<QWidget *> controls = leaves(window);
    EXPECT_GT(controls.size(), 20);
    for (const QWidget *control : controls) {
        const QSize wanted = control->minimumSizeHint().expandedTo(
            qobject_cast<const QLabel *>(control) ? control->sizeHint() : QSize());
        EXPECT_GE(control->width(), wanted.width()) << control->objectName().toStdString();
        EXPECT_GE(control->height(), wanted.height()) << control->objectName().toStdString();
        const QRect place(control->mapTo(&window, QPoint()), control->size());
        EXPECT_TRUE(window.rect().contains(place)) << control->objectName().toStdString();
        for (const QWidget *other : controls) {
            if (other != control) {
                EXPECT_FALSE(place.intersects(QRect(other->mapTo(&window, QPoint()), other->size())))
                    << control->objectName().toStdString() << " and " << other->objectName().toStdString();
            }
        }
    }
}

QList<StoredRecording> unfinishedRecordings(int count)
{
    StoredRecording recording;
    recording.id = "20261122-140512-3fa9";
    recording.isReadable = true;
    recording.start = QDateTime::currentDateTimeUtc();
    recording.seconds = 2530;
    return QList<StoredRecording>(count, recording);
}

/// Without a logo, with a text, with a picture, and with all that the status line can say.
void expectNothingCutOffInAnyMode(MainWindow &window, VNLogoContext &logo)
{
    logo.setLogoValidate(false);
    expectNothingCutOffOrOverlapping(window);
    const qsizetype folded = leaves(window).size();
    logo.setLogoValidate(true);
    for (const int type : { 0, 1 }) {
        logo.setLogoType(type);
        QCoreApplication::processEvents();
        expectNothingCutOffOrOverlapping(window);
        EXPECT_GT(leaves(window).size(), folded + 12);
    }
    window.showSaved("/somewhere/" + QString(200, u'x') + ".mp4", 10);
    QCoreApplication::processEvents();
    expectNothingCutOffOrOverlapping(window);
    for (const int count : { 1, 2 }) {
        window.unfinishedLine().showRecordings(unfinishedRecordings(count));
        QCoreApplication::processEvents();
        expectNothingCutOffOrOverlapping(window);
    }
    window.showStatus({});
}

TEST_F(MainWindowTest, NothingIsCutOffOrOverlaps)
{
    expectNothingCutOffInAnyMode(*window, logo());
    // Beside the rectangle of a first start there are 756 points on a display of 3840 pixels at scale 2.
    EXPECT_LE(window->frameGeometry().width(), 756);
}

TEST_F(MainWindowTest, NothingIsCutOffInALongLanguage)
{
    const int widthInEnglish = window->width();
    LongTranslator translator;
    QCoreApplication::installTranslator(&translator);
    makeWindow();
    EXPECT_TRUE(control<QAbstractButton>("recordButton").text().endsWith(u'ö'));
    EXPECT_GT(window->width(), widthInEnglish);
    expectNothingCutOffInAnyMode(*window, logo());
    // On the smallest desktops that are common, beside a panel and with a frame.
    EXPECT_LE(window->width(), 1366);
    EXPECT_LE(window->height(), 768 - 80);
    QCoreApplication::removeTranslator(&translator);
}

/// The parameter is the name of the audio input, which may be what makes a column wide.
class FoldingTest : public MainWindowTest, public testing::WithParamInterface<const char *>
{
protected:
    FoldingTest()
        : MainWindowTest({ GetParam() })
    {
    }
};

TEST_P(FoldingTest, TheLogosControlsAreFoldedAwayWithoutALogo)
{
    logo().setLogoValidate(false);
    const QList<const char *> controls { "chkLogoText",   "logoTextField", "mLogoFontFillColorWell",
                                         "scaleSlider",   "scaleField",    "logoXField",
                                         "rotationLabel", "chkLogoImage" };
    for (const char *name : controls)
        EXPECT_FALSE(widget(name).isVisible()) << name;
    const QSize folded = window->size();
    const QRect record = widget("recordButton").geometry();
    const QRect width = widget("widthField").geometry();
    control<VNCheckCell>("chkLogo").click();
    for (const char *name : controls)
        EXPECT_TRUE(widget(name).isVisible()) << name;
    EXPECT_GT(window->height(), folded.height() + 5 * 28);
    EXPECT_EQ(window->width(), folded.width());
    EXPECT_EQ(widget("recordButton").size(), record.size());
    EXPECT_EQ(widget("widthField").geometry(), width); // nothing above it moves
    EXPECT_EQ(widget("afterTitle").x(), widget("logoXLabel").x());
    control<VNCheckCell>("chkLogo").click();
    EXPECT_EQ(window->size(), folded);
    EXPECT_EQ(widget("recordButton").geometry(), record);
}

INSTANTIATE_TEST_SUITE_P(Inputs, FoldingTest, testing::Values("Mic", "Built-in Audio Analog Stereo, Front"));

TEST_F(MainWindowTest, EdgesOfTheColumnsAreAligned)
{
    logo().setLogoValidate(true);
    const auto left = [this](const char *name) { return widget(name).mapTo(window.get(), QPoint()).x(); };
    const auto right = [&](const char *name) { return left(name) + widget(name).width(); };
    const QList<QList<const char *>> sameLeft {
        { "regionTitle",
          "chkFullScreen",
          "offsetXLabel",
          "topLabel",
          "offsetYLabel",
          "selectButton",
          "chkLogo",
          "chkLogoText",
          "logoTextField",
          "fontButton",
          "fillLabel",
          "statusLine",
          "recordButton" },
        { "offsetXField", "topField", "offsetYField" },
        { "widthLabel", "heightLabel", "sizeLabel" },
        { "widthField", "heightField", "sizeView" },
        { "qualityTitle",
          "chkEnableAudio",
          "chkSystemSound",
          "countdownLabel",
          "shortcutLabel",
          "pauseShortcutLabel",
          "afterTitle",
          "logoXLabel",
          "scaleLabel" },
        { "mVideoQualityView",
          "mAudioDevicesView",
          "levelMeter",
          "chkReveal",
          "chkOpen",
          "countdownView",
          "shortcutField",
          "pauseShortcutField",
          "scaleSlider" },
    };
    for (const QList<const char *> &names : sameLeft) {
        for (const char *name : names)
            EXPECT_EQ(left(name), left(names.first())) << name << " and " << names.first();
    }
    const QList<QList<const char *>> sameRight {
        { "widthField",
          "sizeView",
          "selectButton",
          "stopAfterField",
          "logoTextField",
          "mLogoFontFillColorWell" },
        { "mVideoQualityView",
          "inputLevelSlider",
          "systemLevelSlider",
          "shortcutField",
          "logoXField",
          "rotationField",
          "statusLine",
          "recordButton" },
    };
    for (const QList<const char *> &names : sameRight) {
        for (const char *name : names)
            EXPECT_EQ(right(name), right(names.first())) << name << " and " << names.first();
    }
}

TEST_F(MainWindowTest, EveryControlHasAToolTip)
{
    logo().setLogoValidate(true);
    window->showSaved("/somewhere/movie.mp4", 1);
    window->unfinishedLine().showRecordings(unfinishedRecordings(1));
    for (const int type : { 0, 1 }) {
        logo().setLogoType(type);
        for (const QWidget *leaf : leaves(*window)) {
            if (!qobject_cast<const QLabel *>(leaf)) {
                EXPECT_FALSE(leaf->toolTip().isEmpty()) << leaf->objectName().toStdString();
            }
        }
    }
    EXPECT_FALSE(widget("logoImageView").toolTip().isEmpty());
    EXPECT_FALSE(widget("logoTextField").toolTip().isEmpty());
    EXPECT_FALSE(widget("shortcutField").toolTip().isEmpty());
    EXPECT_FALSE(widget("pauseShortcutField").toolTip().isEmpty());
    // A device's name may be longer than its list.
    EXPECT_TRUE(widget("mAudioDevicesView").toolTip().endsWith("Microphone"));
    control<VNCheckCell>("chkEnableAudio").click();
    QTest::keyClick(&widget("mAudioDevicesView"), Qt::Key_Down);
    EXPECT_TRUE(widget("mAudioDevicesView").toolTip().endsWith("Monitor of Speakers"));
}

/// The keys that reach something in the window with Alt, as it is shown now.
QString mnemonics(const MainWindow &window)
{
    QString keys;
    for (const QWidget *control : window.findChildren<QWidget *>()) {
        const QString text = control->property("text").toString();
        if (const qsizetype at = text.indexOf(u'&'); at >= 0 && control->isVisible())
            keys += text.mid(at + 1, 1).toLower();
    }
    for (const QAction *menu : window.menuBar()->actions())
        keys += menu->text().section(u'&', 1).left(1).toLower();
    std::sort(keys.begin(), keys.end());
    return keys;
}

QString withoutRepeats(QString keys)
{
    keys.truncate(std::unique(keys.begin(), keys.end()) - keys.begin());
    return keys;
}

TEST_F(MainWindowTest, MnemonicsAreUniqueInAllLanguages)
{
    for (const char *language : { "en", "de" }) {
        QTranslator translator;
        if (translator.load(QStringLiteral(":/i18n/vornic_%1").arg(language)))
            QCoreApplication::installTranslator(&translator);
        makeWindow();
        EXPECT_EQ(control<QAbstractButton>("recordButton").text() == "&Record", translator.isEmpty());
        logo().setLogoValidate(true);
        for (const int type : { 0, 1 }) {
            logo().setLogoType(type);
            const QString keys = mnemonics(*window);
            EXPECT_GT(keys.size(), 15);
            EXPECT_EQ(keys, withoutRepeats(keys)) << language << type;
        }
    }
}

TEST_F(MainWindowTest, LettersThatATextLogoCannotShowAreToldOfAndBecomeAPicture)
{
    logo().setLogoValidate(true);
    QWidget &told = widget("foreignLettersBox");
    EXPECT_TRUE(told.isHidden());
    logo().setLogoText("Grüße");
    EXPECT_FALSE(told.isHidden());
    logo().setLogoText("Gruesse");
    EXPECT_TRUE(told.isHidden());
    logo().setLogoText("Grüße");
    control<QAbstractButton>("textPictureButton").click();
    EXPECT_EQ(logo().type(), LogoType::Picture);
    EXPECT_FALSE(logo().getNSImage().isNull());
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runWindowTests(argc, argv);
}
