#include "controls/VNCheckCell.h"
#include "controls/VNColorWell.h"
#include "controls/VNComboboxView.h"
#include "controls/VNDragDropImageView.h"
#include "controls/VNRadioCell.h"
#include "controls/VNSliderCell.h"
#include "controls/VNTextFieldCell.h"
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
    control<NumberField>("opacityField").setValue(128);
    EXPECT_EQ(logo().LogoTransparency(), 128);
    EXPECT_EQ(control<VNSliderCell>("opacitySlider").doubleValue(), 128);
    control<NumberField>("scaleField").setValue(1.5);
    EXPECT_EQ(logo().LogoScale(), 1.5);
    // Beyond the slider's end is not pulled back by it.
    control<NumberField>("scaleField").setValue(9);
    EXPECT_EQ(logo().LogoScale(), 9);
    logo().setLogoPosition({ 33, 44 });
    EXPECT_EQ(control<NumberField>("logoXField").value(), 33);
    EXPECT_EQ(control<NumberField>("logoYField").value(), 44);
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
    const QSignalSpy refused(&delegate, &VornicAppDelegate::recordingRefused);
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
    EXPECT_GT(controls.size(), 30);
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

TEST_F(MainWindowTest, NothingIsCutOffOrOverlaps)
{
    expectNothingCutOffOrOverlapping(*window);
    logo().setLogoType(1);
    QCoreApplication::processEvents();
    expectNothingCutOffOrOverlapping(*window);
}

TEST_F(MainWindowTest, NothingIsCutOffInALongLanguage)
{
    const int widthInEnglish = window->width();
    LongTranslator translator;
    QCoreApplication::installTranslator(&translator);
    makeWindow();
    EXPECT_TRUE(control<QAbstractButton>("recordButton").text().endsWith(u'ö'));
    EXPECT_GT(window->width(), widthInEnglish);
    expectNothingCutOffOrOverlapping(*window);
    logo().setLogoType(1);
    QCoreApplication::processEvents();
    expectNothingCutOffOrOverlapping(*window);
    QCoreApplication::removeTranslator(&translator);
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
        for (const int type : { 0, 1 }) {
            logo().setLogoType(type);
            const QString keys = mnemonics(*window);
            EXPECT_GT(keys.size(), 15);
            EXPECT_EQ(keys, withoutRepeats(keys)) << language << type;
        }
    }
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runWindowTests(argc, argv);
}
