#include "contrast.h"
#include "control_pictures.h"
#include "controls/VNColorWell.h"
#include "controls/beside_window.h"
#include "controls/color_panel.h"
#include "controls/dialog_skin.h"
#include "controls/image_panel.h"
#include "controls/push_button.h"
#include "controls/skin_colors.h"
#include "support/named_pipe.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFontDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QScreen>
#include <QSpinBox>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>

namespace vornic {
namespace {

TEST(BesideWindow, IsWhereThereIsRoom)
{
    constexpr QRect screen(0, 0, 1920, 1080);
    constexpr QSize panel(400, 500);
    EXPECT_EQ(positionBeside(panel, { 100, 200, 600, 500 }, screen), QPoint(712, 200)) << "to the right";
    EXPECT_EQ(positionBeside(panel, { 1200, 200, 600, 500 }, screen), QPoint(788, 200)) << "to the left";
    EXPECT_EQ(positionBeside(panel, { 0, 100, 1900, 400 }, screen), QPoint(0, 512)) << "below";
    EXPECT_EQ(positionBeside(panel, { 0, 600, 1900, 400 }, screen), QPoint(0, 88)) << "above";
    EXPECT_EQ(positionBeside(panel, { 100, 800, 600, 300 }, screen), QPoint(712, 580))
        << "all of it is on the screen";
    EXPECT_EQ(positionBeside(panel, { 2020, 100, 600, 500 }, screen.translated(1920, 0)), QPoint(2632, 100));
    // It covers the window, but as little of it as can be.
    EXPECT_EQ(positionBeside(panel, { 300, 100, 1300, 900 }, screen), QPoint(1520, 100));
}

/// The colours of \a button, as large as \a size.
QImage pictureOf(QPushButton &button, QSize size)
{
    button.resize(size);
    return painted(button, 1);
}

TEST(DressedDialog, HasButtonsLikeOurs)
{
    QDialog dialog;
    auto *button = new QPushButton(QStringLiteral("Choose"), &dialog);
    button->setAutoDefault(false);
    PushButton ours(QStringLiteral("Choose"));
    ours.setAutoDefault(false);
    EXPECT_FALSE(pictureOf(*button, ours.sizeHint()) == pictureOf(ours, ours.sizeHint()));
    dressDialog(dialog);
    EXPECT_TRUE(pictureOf(*button, ours.sizeHint()) == pictureOf(ours, ours.sizeHint()));
    EXPECT_EQ(button->sizeHint(), ours.sizeHint());
    for (QPushButton *both : { button, static_cast<QPushButton *>(&ours) })
        both->setDefault(true);
    EXPECT_TRUE(pictureOf(*button, ours.sizeHint()) == pictureOf(ours, ours.sizeHint()));
}

TEST(DressedDialog, HasEdgesThatAreSeen)
{
    QApplication::setStyle(QStringLiteral("Fusion"));
    QApplication::setPalette(skinPalette());
    QDialog dialog;
    dialog.resize(300, 300);
    const QList<QWidget *> fields { new QLineEdit(&dialog),
                                    new QComboBox(&dialog),
                                    new QSpinBox(&dialog),
                                    new QListWidget(&dialog),
                                    new QCheckBox(&dialog) };
    const auto edge = [&](const QRect &frame) {
        const QImage image = dialog.grab().toImage();
        double most = 1;
        for (int x = frame.left(); x < frame.left() + 6; ++x)
            most = std::max(
                most,
                contrast(image.pixelColor(x, frame.center().y()), dialog.palette().color(QPalette::Window)));
        return most;
    };
    for (QWidget *field : fields) {
        field->setGeometry(20, 20 + 50 * int(fields.indexOf(field)), 100, 30);
        EXPECT_LT(edge(field->geometry()), 3) << field->metaObject()->className();
    }
    dressDialog(dialog);
    for (const QWidget *field : fields) {
        const double figure = edge(field->geometry());
        std::printf("  %-12s %5.2f : 1\n", field->metaObject()->className(), figure);
        EXPECT_GE(figure, 3) << field->metaObject()->className();
    }
}

TEST(PanelWithoutButtons, GetsOneThatClosesIt)
{
    QWidget window;
    window.setGeometry(10, 10, 200, 100);
    VNColorWell well(&window);
    window.show();
    well.popUp();
    ColorPanel &panel = ColorPanel::shared();
    ASSERT_TRUE(panel.isVisible());
    EXPECT_FALSE(panel.frameGeometry().intersects(window.frameGeometry()))
        << "it is beside the window, on a screen with room for both";
    auto *close = panel.findChild<QPushButton *>(QStringLiteral("closeButton"));
    ASSERT_TRUE(close);
    EXPECT_TRUE(close->isVisible());
    close->click();
    EXPECT_FALSE(panel.isVisible());

    QFontDialog fonts;
    fonts.setOptions(QFontDialog::DontUseNativeDialog | QFontDialog::NoButtons);
    addCloseButton(fonts);
    fonts.show();
    fonts.findChild<QPushButton *>(QStringLiteral("closeButton"))->click();
    EXPECT_FALSE(fonts.isVisible());
}

class ImagePanelTest : public testing::Test
{
protected:
    [[nodiscard]] QString saved(const QString &name, QSize size) const
    {
        QImage picture(size, QImage::Format_RGB32);
        picture.fill(Qt::green);
        picture.save(folder.filePath(name));
        return folder.filePath(name);
    }

    QTemporaryDir folder;
};

TEST_F(ImagePanelTest, StartsInTheFolderForPicturesAndThenInTheLast)
{
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    QDir().mkpath(pictures);
    ImagePanel first(nullptr, {});
    EXPECT_EQ(first.directory().absolutePath(), pictures);
    emit first.fileSelected(saved(QStringLiteral("a.png"), { 4, 4 }));
    EXPECT_EQ(ImagePanel(nullptr, {}).directory().absolutePath(), folder.path());
    folder.remove();
    EXPECT_EQ(ImagePanel(nullptr, {}).directory().absolutePath(), pictures);
}

TEST_F(ImagePanelTest, NamesItsTypeWithoutTheListOfPatterns)
{
    ImagePanel panel(nullptr, {});
    panel.show();
    EXPECT_THAT(panel.nameFilters().join(u' ').toStdString(), testing::HasSubstr("*.png"));
    QStringList shown;
    for (const QComboBox *box : panel.findChildren<QComboBox *>())
        shown += box->currentText();
    EXPECT_TRUE(shown.contains(QStringLiteral("Pictures"))) << shown.join(u'|').toStdString();
}

TEST_F(ImagePanelTest, ShowsThePictureBeforeItIsChosen)
{
    ImagePanel panel(nullptr, {});
    auto *preview = panel.findChild<QLabel *>(QStringLiteral("preview"));
    ASSERT_TRUE(preview);
    EXPECT_TRUE(preview->pixmap(Qt::ReturnByValue).isNull());
    emit panel.currentChanged(saved(QStringLiteral("wide.png"), { 400, 100 }));
    EXPECT_EQ(preview->pixmap(Qt::ReturnByValue).deviceIndependentSize(), QSizeF(180, 45));
    emit panel.currentChanged(saved(QStringLiteral("small.png"), { 4, 4 }));
    EXPECT_EQ(preview->pixmap(Qt::ReturnByValue).deviceIndependentSize(), QSizeF(4, 4))
        << "no larger than it is";
    emit panel.currentChanged(folder.path());
    EXPECT_TRUE(preview->pixmap(Qt::ReturnByValue).isNull());
    test::NamedPipe pipe(folder.filePath(QStringLiteral("pipe.png")));
    emit panel.currentChanged(folder.filePath(QStringLiteral("pipe.png")));
    EXPECT_FALSE(pipe.wasOpened());
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    const QTemporaryDir home;
    qputenv("HOME", home.path().toUtf8());
    qputenv("XDG_CONFIG_HOME", home.filePath(QStringLiteral("config")).toUtf8());
    return vornic::runControlTests(argc, argv);
}
