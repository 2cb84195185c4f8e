#include "control_pictures.h"
#include "controls/skin_pictures.h"

#include <QDir>

#include <map>

namespace vornic {
namespace {

const std::map<QString, QSize> &pictures()
{
    static const std::map<QString, QSize> all = [] {
        std::map<QString, QSize> sizes;
        const auto add = [&](const QStringList &names, QSize size) {
            for (const QString &name : names)
                sizes[name + QStringLiteral(".png")] = size;
        };
        add({ "checkOn", "checkOnDisable", "checkOnDown", "checkOff", "checkOffDisable", "checkOffDown" },
            { 14, 14 });
        add({ "radioOn", "radioOnDisable", "radioOnDown", "radioOff", "radioOffDisable", "radioOffDown" },
            { 16, 16 });
        add({ "sliderTick", "sliderTickDisable", "sliderTickDown" }, { 18, 18 });
        add({ "sliderTrackLeft",
              "sliderTrackLeftDisable",
              "sliderTrackRight",
              "sliderTrackRightDisable",
              "sliderTrackCenter",
              "sliderTrackCenterDisable",
              "sliderTrackInLeft",
              "sliderTrackInLeftDisable",
              "sliderTrackInCenter",
              "sliderTrackInCenterDisable" },
            { 4, 5 });
        add({ "stepUp", "stepUpDisable" }, { 15, 14 });
        add({ "stepDown", "stepDownDisable" }, { 15, 15 });
        add({ "editleft",
              "editcenter",
              "editright",
              "editleftdisable",
              "editcenterdisable",
              "editrightdisable" },
            { 4, 28 });
        add({ "popupBtn", "popupBtnDisable", "popupBtnDown", "popupBtnOver" }, { 28, 28 });
        add({ "colorBtn", "colorBtnDown" }, { 103, 28 });
        add({ "ministopRecorder1" }, { 18, 18 });
        return sizes;
    }();
    return all;
}

TEST(SkinPictures, AreThereInTheirSizesAndAllDiffer)
{
    std::map<QByteArray, QString> contents;
    for (const auto &[name, size] : pictures()) {
        EXPECT_EQ(skinPicture(name, 1).size(), size) << name.toStdString();
        EXPECT_EQ(skinPicture(name, 2).size(), size * 2) << name.toStdString();
        const QImage image = skinPicture(name, 2);
        const QByteArray bytes(reinterpret_cast<const char *>(image.constBits()), image.sizeInBytes());
        EXPECT_EQ(contents.count(bytes), 0U) << name.toStdString() << " is " << contents[bytes].toStdString();
        contents[bytes] = name;
    }
}

TEST(SkinPictures, ThereAreNoOthers)
{
    for (const QString &file : QDir(QStringLiteral(":/skin")).entryList()) {
        QString name = file;
        EXPECT_TRUE(pictures().count(name.remove(QStringLiteral("@2x"))) == 1) << file.toStdString();
    }
    EXPECT_EQ(QDir(QStringLiteral(":/skin")).entryList().size(), qsizetype(2 * pictures().size()));
}

TEST(SkinPictures, TheStopItemIsARedDiscWithAWhiteSquare)
{
    for (const int scale : { 1, 2 }) {
        const QImage picture = skinPicture(QStringLiteral("ministopRecorder1.png"), scale);
        EXPECT_EQ(picture.pixelColor(9 * scale, 9 * scale), QColor(Qt::white));
        const QColor disc = picture.pixelColor(3 * scale, 9 * scale);
        EXPECT_EQ(disc.alpha(), 255);
        EXPECT_GT(disc.red(), 3 * disc.green());
        EXPECT_GT(disc.red(), 3 * disc.blue());
        EXPECT_EQ(picture.pixelColor(0, 0).alpha(), 0);
    }
}

TEST(SkinPictures, AMissingOneDrawsNothing)
{
    EXPECT_TRUE(skinPicture(QStringLiteral("noSuchPicture.png"), 1).isNull());
    QImage image = blank({ 20, 20 }, 1);
    QPainter painter(&image);
    drawSkinPicture(painter, QStringLiteral("noSuchPicture.png"), { 0, 0, 20, 20 });
    painter.end();
    EXPECT_EQ(image, blank({ 20, 20 }, 1));
}

class DrawSkinPicture : public testing::TestWithParam<int>
{
};

TEST_P(DrawSkinPicture, IsPixelExactInItsOwnSize)
{
    QImage image = blank({ 40, 30 }, GetParam());
    QPainter painter(&image);
    painter.translate(3, 1);
    drawSkinPicture(painter, QStringLiteral("checkOn.png"), { 2, 4, 14, 14 });
    painter.end();
    EXPECT_TRUE(shows(image, QStringLiteral("checkOn.png"), { 5, 5, 14, 14 }));
    EXPECT_EQ(at(image, 4, 10), garish);
    EXPECT_EQ(at(image, 19, 10), garish);
    EXPECT_EQ(at(image, 10, 4), garish);
    EXPECT_EQ(at(image, 10, 19), garish);
}

TEST_P(DrawSkinPicture, StretchesAPictureWithoutSoftEnds)
{
    QImage image = blank({ 60, 40 }, GetParam());
    QPainter painter(&image);
    drawSkinPicture(painter, QStringLiteral("editcenter.png"), { 10, 5, 37, 28 });
    painter.end();
    for (const int y : { 5, 6, 20, 31, 32 }) {
        EXPECT_NE(at(image, 10, y), garish) << y;
        EXPECT_EQ(at(image, 10, y), at(image, 46, y)) << y;
        EXPECT_EQ(at(image, 28, y), at(image, 46, y)) << y;
        EXPECT_EQ(at(image, 9, y), garish) << y;
        EXPECT_EQ(at(image, 47, y), garish) << y;
    }
}

TEST_P(DrawSkinPicture, LeavesThePainterAsItWas)
{
    QImage image = blank({ 20, 20 }, GetParam());
    QPainter painter(&image);
    const QTransform before = painter.transform();
    const QPainter::RenderHints hints = painter.renderHints();
    drawSkinPicture(painter, QStringLiteral("checkOn.png"), { 0, 0, 20, 20 });
    EXPECT_EQ(painter.transform(), before);
    EXPECT_EQ(painter.renderHints(), hints);
}

INSTANTIATE_TEST_SUITE_P(Ratios, DrawSkinPicture, testing::Values(1, 2));

TEST(SkinPictures, HalfAPixelIsNoReasonForSoftEdges)
{
    QImage image = blank({ 20, 20 }, 1);
    QPainter painter(&image);
    drawSkinPicture(painter, QStringLiteral("checkOn.png"), { 0, 2.5, 14, 14 });
    painter.end();
    EXPECT_TRUE(shows(image, QStringLiteral("checkOn.png"), { 0, 3, 14, 14 }));
}

TEST(SkinPictures, BetweenOneAndTwoPixelsAPointTheSharperOneIsUsed)
{
    QImage image(30, 30, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(1.5);
    image.fill(garish);
    QPainter painter(&image);
    drawSkinPicture(painter, QStringLiteral("checkOn.png"), { 2, 2, 14, 14 });
    painter.end();
    EXPECT_EQ(image.pixelColor(2, 10), garish);
    EXPECT_NE(image.pixelColor(3, 10), garish);
    EXPECT_NE(image.pixelColor(23, 10), garish);
    EXPECT_EQ(image.pixelColor(24, 10), garish);
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runControlTests(argc, argv);
}
