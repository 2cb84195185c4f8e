#include "base/keyed_archive.h"
#include "display/fake_display.h"
#include "gui_main.h"
#include "options/VNOption.h"
#include "support/test_pictures.h"

#include <QCborArray>
#include <QCborMap>
#include <QCborStreamReader>
#include <QCborValue>
#include <QFile>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <memory>

namespace vornic {
namespace {

using namespace Qt::StringLiterals;

static_assert(Archivable<VNOption>);
static_assert(Archivable<VNLogoContext>);

class OptionsArchiveTest : public testing::Test
{
protected:
    OptionsArchiveTest() { setMainDisplay(std::make_shared<FakeDisplay>(QSize(1440, 900))); }
    ~OptionsArchiveTest() override { setMainDisplay(nullptr); }
};

template<typename T>
std::unique_ptr<T> unarchived(const QByteArray &bytes)
{
    const auto coder = KeyedUnarchiver::create(bytes);
    return coder ? T::createWithCoder(*coder) : nullptr;
}

template<typename T>
std::unique_ptr<T> unarchived(const QCborMap &map)
{
    return unarchived<T>(map.toCborValue().toCbor());
}

template<typename T>
QCborMap archiveOf(const T &object)
{
    return QCborValue::fromCbor(archivedData(object)).toMap();
}

QImage somePicture()
{
    QImage picture(7, 5, QImage::Format_ARGB32_Premultiplied);
    picture.fill(QColor(200, 100, 50, 128));
    picture.setPixelColor(6, 4, Qt::white);
    return picture;
}

/// Options in which nothing is at its default and nothing is zero.
std::unique_ptr<VNOption> changedOptions()
{
    auto options = std::make_unique<VNOption>();
    options->setSelectedRect({ 1.5, 2.25, 300, 400 });
    options->setRecordQuality(1);
    options->setRecordRegion(1);
    options->setEnableAudio(true);
    options->setOpenRecordedWhenFinished(true);
    options->setRecordsSystemSound(true);
    options->setInputLevel(130);
    options->setSystemLevel(0);
    options->setStopsAfterTime(true);
    options->setStopAfter(90);
    VNLogoContext *logo = options->logoContext();
    logo->setLogoValidate(true);
    logo->setLogoType(2);
    logo->setLogoText(QStringLiteral("Größe €"));
    logo->setLogoPosition({ -1.5, 2.5 });
    logo->setLogoScale(1.1);
    logo->setLogoTransparency(128);
    logo->setLogoFontFillColor(Qt::red);
    logo->setLogoFontStrokeColor(QColor(1, 2, 3, 4));
    logo->setLogoRotation(-(qint64 { 1 } << 40));
    QFont font(QStringList { "DejaVu Serif" });
    font.setPixelSize(33);
    font.setItalic(true);
    logo->setFontAttrs({ font });
    logo->setNSImage(somePicture());
    return options;
}

void expectZero(VNLogoContext &logo)
{
    EXPECT_FALSE(logo.LogoValidate());
    EXPECT_EQ(logo.LogoType(), 0);
    EXPECT_TRUE(logo.LogoText().isNull());
    EXPECT_EQ(logo.LogoPosition(), QPointF(0, 0));
    EXPECT_EQ(logo.LogoScale(), 0);
    EXPECT_EQ(logo.LogoTransparency(), 0);
    EXPECT_FALSE(logo.LogoFontFillColor().isValid());
    EXPECT_FALSE(logo.LogoFontStrokeColor().isValid());
    EXPECT_EQ(logo.LogoRotation(), 0);
    EXPECT_TRUE(logo.getNSImage().isNull());
    EXPECT_TRUE(logo.getLogoRect().isNull());
    EXPECT_EQ(logo.fontAttrs().font, defaultLogoFont()); // made anew: none was stored
}

TEST_F(OptionsArchiveTest, OptionsComeBackAsTheyWere)
{
    const auto options = unarchived<VNOption>(archivedData(*changedOptions()));
    ASSERT_TRUE(options);
    EXPECT_EQ(options->selectedRect(), QRectF(1.5, 2.25, 300, 400));
    EXPECT_EQ(options->recordQuality(), 1);
    EXPECT_EQ(options->recordRegion(), 1);
    EXPECT_TRUE(options->enableAudio());
    EXPECT_TRUE(options->showInFinderWhenFinished());
    EXPECT_TRUE(options->openRecordedWhenFinished());
    EXPECT_TRUE(options->recordsSystemSound());
    EXPECT_EQ(options->inputLevel(), 130);
    EXPECT_EQ(options->systemLevel(), 0);
    EXPECT_TRUE(options->stopsAfterTime());
    EXPECT_EQ(options->stopAfter(), 90);
    const VNLogoContext *logo = options->logoContext();
    EXPECT_TRUE(logo->LogoValidate());
    EXPECT_EQ(logo->LogoType(), 2);
    EXPECT_EQ(logo->LogoText(), QStringLiteral("Größe €"));
    EXPECT_EQ(logo->LogoPosition(), QPointF(-1.5, 2.5));
    EXPECT_EQ(logo->LogoScale(), static_cast<double>(1.1F));
    EXPECT_EQ(logo->LogoTransparency(), 128);
    EXPECT_EQ(logo->LogoFontFillColor(), QColor(Qt::red));
    EXPECT_EQ(logo->LogoFontStrokeColor(), QColor(1, 2, 3, 4));
    EXPECT_EQ(logo->LogoRotation(), -(qint64 { 1 } << 40));
    EXPECT_EQ(options->logoContext()->fontAttrs(), changedOptions()->logoContext()->fontAttrs());
    EXPECT_EQ(logo->getNSImage(), somePicture());
}

TEST_F(OptionsArchiveTest, AnArchivedObjectArchivesToTheSameBytes)
{
    const QByteArray first = archivedData(*changedOptions());
    EXPECT_EQ(archivedData(*unarchived<VNOption>(first)), first);
}

TEST_F(OptionsArchiveTest, EveryKeyHasItsValueType)
{
    const QCborMap map = archiveOf(*changedOptions());
    EXPECT_EQ(map.size(), 12);
    EXPECT_TRUE(map["_logoContext"_L1].isMap());
    EXPECT_EQ(map["_recordBounds"_L1].toArray().size(), 4);
    EXPECT_TRUE(map["_recordQuality"_L1].isInteger());
    EXPECT_TRUE(map["_recordRegion"_L1].isInteger());
    EXPECT_TRUE(map["_enableAudio"_L1].isBool());
    EXPECT_TRUE(map["_showInFinder"_L1].isBool());
    EXPECT_TRUE(map["_openRecorded"_L1].isBool());
    EXPECT_TRUE(map["recordsSystemSound"_L1].isBool());
    EXPECT_TRUE(map["inputLevelChange"_L1].isInteger());
    EXPECT_TRUE(map["systemLevelChange"_L1].isInteger());
    EXPECT_TRUE(map["stopsAfterTime"_L1].isBool());
    EXPECT_TRUE(map["stopAfterChange"_L1].isInteger());
    const QCborMap logo = map["_logoContext"_L1].toMap();
    EXPECT_EQ(logo.size(), 11);
    EXPECT_TRUE(logo["mLogoValidate"_L1].isBool());
    EXPECT_TRUE(logo["mLogoType"_L1].isInteger());
    EXPECT_TRUE(logo["mLogoText"_L1].isString());
    EXPECT_EQ(logo["mLogoPosition"_L1].toArray().size(), 2);
    EXPECT_TRUE(logo["mLogoScale"_L1].isDouble());
    EXPECT_TRUE(logo["mLogoTransparency"_L1].isDouble());
    EXPECT_TRUE(logo["mLogoFontFillColor"_L1].isMap());
    EXPECT_TRUE(logo["mLogoFontStrokeColor"_L1].isMap());
    EXPECT_TRUE(logo["mLogoRotation"_L1].isInteger());
    EXPECT_TRUE(logo["mLogoFontAttr"_L1].isMap());
    EXPECT_TRUE(logo["mLogoImage"_L1].isMap());
}

/// The keys of an archive as they stand in its bytes.
QStringList keysInOrder(const QByteArray &archive)
{
    QCborStreamReader reader(archive);
    QStringList keys;
    if (!reader.isMap() || !reader.enterContainer())
        return keys;
    while (reader.hasNext()) {
        keys += QCborValue::fromCbor(reader).toString();
        reader.next(); // its value
    }
    return keys;
}

TEST_F(OptionsArchiveTest, KeysAreWrittenInTheirOrder)
{
    const auto options = changedOptions();
    EXPECT_EQ(keysInOrder(archivedData(*options)),
              QStringList({ "_logoContext",
                            "_recordBounds",
                            "_recordQuality",
                            "_recordRegion",
                            "_enableAudio",
                            "_showInFinder",
                            "_openRecorded",
                            "recordsSystemSound",
                            "inputLevelChange",
                            "systemLevelChange",
                            "stopsAfterTime",
                            "stopAfterChange" }));
    EXPECT_EQ(keysInOrder(archivedData(*options->logoContext())),
              QStringList({ "mLogoValidate",
                            "mLogoType",
                            "mLogoText",
                            "mLogoPosition",
                            "mLogoScale",
                            "mLogoTransparency",
                            "mLogoFontFillColor",
                            "mLogoFontStrokeColor",
                            "mLogoRotation",
                            "mLogoFontAttr",
                            "mLogoImage" }));
}

TEST_F(OptionsArchiveTest, WhatIsNotThereIsNotWritten)
{
    VNOption options;
    EXPECT_FALSE(archiveOf(options).contains("_logoContext"_L1));
    const QCborMap logo = archiveOf(VNLogoContext());
    EXPECT_FALSE(logo.contains("mLogoFontAttr"_L1));
    EXPECT_FALSE(logo.contains("mLogoImage"_L1));
    EXPECT_EQ(logo.size(), 9);
}

TEST_F(OptionsArchiveTest, WithoutALogoAFreshOneIsMade)
{
    const auto options = unarchived<VNOption>(archivedData(VNOption()));
    EXPECT_EQ(options->logoContext()->LogoText(), "Sample Text");
    EXPECT_EQ(options->logoContext()->LogoTransparency(), 255);
}

TEST_F(OptionsArchiveTest, AnEmptyArchiveIsZero)
{
    const auto options = unarchived<VNOption>(QCborMap());
    ASSERT_TRUE(options);
    EXPECT_EQ(options->selectedRect(), QRectF(0, 0, 0, 0));
    EXPECT_EQ(options->recordQuality(), 0);
    EXPECT_EQ(options->recordRegion(), 0);
    EXPECT_FALSE(options->enableAudio());
    EXPECT_FALSE(options->showInFinderWhenFinished());
    EXPECT_FALSE(options->openRecordedWhenFinished());
    expectZero(*unarchived<VNLogoContext>(QCborMap()));
}

TEST_F(OptionsArchiveTest, AnEmptyFontDictionaryStaysEmpty)
{
    VNLogoContext logo;
    logo.setFontAttrs({});
    EXPECT_FALSE(unarchived<VNLogoContext>(archivedData(logo))->fontAttrs().font);
}

TEST_F(OptionsArchiveTest, NothingIsClampedOnReading)
{
    VNOption options;
    options.setSelectedRect({ -5000, 9000, 3, 1e9 });
    const auto again = unarchived<VNOption>(archivedData(options));
    EXPECT_EQ(again->offsetX(), -5000);
    EXPECT_EQ(again->offsetY(), 9000);
    EXPECT_EQ(again->width(), 3);
    EXPECT_EQ(again->height(), 1e9);
}

TEST_F(OptionsArchiveTest, OpacityPassesThroughAFloat)
{
    const auto again = [](qint64 transparency) {
        VNLogoContext logo;
        logo.setLogoTransparency(transparency);
        return unarchived<VNLogoContext>(archivedData(logo))->LogoTransparency();
    };
    EXPECT_EQ(again(128), 128);
    EXPECT_EQ(again(-3), -3);
    EXPECT_EQ(again((qint64 { 1 } << 24) + 1), qint64 { 1 } << 24);
    EXPECT_EQ(again(std::numeric_limits<qint64>::max()), std::numeric_limits<qint64>::max());
    EXPECT_EQ(again(std::numeric_limits<qint64>::min()), std::numeric_limits<qint64>::min());
}

TEST_F(OptionsArchiveTest, NumbersBeyondTheirTypesAreHarmless)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double number : { nan, infinity, -infinity, 1e300, -1e300, 3e38, -3e38 }) {
        const QCborArray point { number, number };
        const QCborArray rectangle { number, number, number, number };
        const QCborMap logoMap { { "mLogoTransparency"_L1, number }, { "mLogoScale"_L1, number },
                                 { "mLogoRotation"_L1, number },     { "mLogoType"_L1, number },
                                 { "mLogoPosition"_L1, point },      { "mLogoText"_L1, "x"_L1 } };
        const auto options = unarchived<VNOption>(QCborMap { { "_recordBounds"_L1, rectangle },
                                                             { "_recordQuality"_L1, number },
                                                             { "_logoContext"_L1, logoMap } });
        ASSERT_TRUE(options);
        EXPECT_EQ(options->recordQuality(), 0);
        EXPECT_EQ(options->logoContext()->LogoType(), 0);
        EXPECT_EQ(options->logoContext()->LogoRotation(), 0);
        options->setWidth(500);
        (void)options->logoContext()->getLogoRect();
        EXPECT_TRUE(unarchived<VNOption>(archivedData(*options)));
    }
    EXPECT_EQ(unarchived<VNLogoContext>(QCborMap { { "mLogoTransparency"_L1, 1e30 } })->LogoTransparency(),
              std::numeric_limits<qint64>::max());
    EXPECT_EQ(unarchived<VNLogoContext>(QCborMap { { "mLogoTransparency"_L1, 3.9 } })->LogoTransparency(), 3);
    EXPECT_EQ(unarchived<VNLogoContext>(QCborMap { { "mLogoTransparency"_L1, -3.9 } })->LogoTransparency(),
              -3);
}

TEST_F(OptionsArchiveTest, AScaleBeyondSinglePrecisionIsWrittenAtItsLimit)
{
    VNLogoContext logo;
    logo.setLogoScale(1e300);
    EXPECT_EQ(unarchived<VNLogoContext>(archivedData(logo))->LogoScale(),
              static_cast<double>(std::numeric_limits<float>::max()));
}

/// One key of an archive, and whether the object read from it holds that key's zero value.
template<typename T>
struct KeyRow {
    const char *key;
    std::function<bool(T &)> isZero;
};

const KeyRow<VNOption> optionRows[] = {
    { "_logoContext", [](VNOption &o) { return o.logoContext()->LogoText() == u"Sample Text"; } },
    { "_recordBounds", [](VNOption &o) { return o.selectedRect() == QRectF(0, 0, 0, 0); } },
    { "_recordQuality", [](VNOption &o) { return o.recordQuality() == 0; } },
    { "_recordRegion", [](VNOption &o) { return o.recordRegion() == 0; } },
    { "_enableAudio", [](VNOption &o) { return !o.enableAudio(); } },
    { "_showInFinder", [](VNOption &o) { return !o.showInFinderWhenFinished(); } },
    { "_openRecorded", [](VNOption &o) { return !o.openRecordedWhenFinished(); } },
    { "recordsSystemSound", [](VNOption &o) { return !o.recordsSystemSound(); } },
    { "inputLevelChange", [](VNOption &o) { return o.inputLevel() == 100; } },
    { "systemLevelChange", [](VNOption &o) { return o.systemLevel() == 100; } },
    { "stopsAfterTime", [](VNOption &o) { return !o.stopsAfterTime(); } },
    { "stopAfterChange", [](VNOption &o) { return o.stopAfter() == 600; } },
};

const KeyRow<VNLogoContext> logoRows[] = {
    { "mLogoValidate", [](VNLogoContext &l) { return !l.LogoValidate(); } },
    { "mLogoType", [](VNLogoContext &l) { return l.LogoType() == 0; } },
    { "mLogoText", [](VNLogoContext &l) { return l.LogoText().isNull(); } },
    { "mLogoPosition", [](VNLogoContext &l) { return l.LogoPosition() == QPointF(0, 0); } },
    { "mLogoScale", [](VNLogoContext &l) { return l.LogoScale() == 0; } },
    { "mLogoTransparency", [](VNLogoContext &l) { return l.LogoTransparency() == 0; } },
    { "mLogoFontFillColor", [](VNLogoContext &l) { return !l.LogoFontFillColor().isValid(); } },
    { "mLogoFontStrokeColor", [](VNLogoContext &l) { return !l.LogoFontStrokeColor().isValid(); } },
    { "mLogoRotation", [](VNLogoContext &l) { return l.LogoRotation() == 0; } },
    { "mLogoFontAttr", [](VNLogoContext &l) { return l.fontAttrs().font == defaultLogoFont(); } },
    { "mLogoImage", [](VNLogoContext &l) { return l.getNSImage().isNull(); } },
};

/// Reads \a archive and expects the zero value for exactly the key \a damaged.
template<typename T, std::size_t count>
void expectOnlyZero(const QCborMap &archive, const KeyRow<T> (&rows)[count], const char *damaged)
{
    const auto object = unarchived<T>(archive);
    ASSERT_TRUE(object);
    for (const KeyRow<T> &row : rows)
        EXPECT_EQ(row.isZero(*object), row.key == damaged) << row.key << " with " << damaged << " damaged";
}

template<typename T, std::size_t count>
void damageEachKey(const QCborMap &whole, const KeyRow<T> (&rows)[count])
{
    const QCborValue wrongTypes[] = { QCborValue(), QCborArray { 1, "x"_L1, nullptr }, QCborSimpleType(77) };
    for (const KeyRow<T> &row : rows) {
        QCborMap missing = whole;
        missing.remove(QLatin1StringView(row.key));
        expectOnlyZero(missing, rows, row.key);
        for (const QCborValue &wrong : wrongTypes) {
            QCborMap damaged = whole;
            damaged[QLatin1StringView(row.key)] = wrong;
            expectOnlyZero(damaged, rows, row.key);
        }
    }
}

TEST_F(OptionsArchiveTest, EachMissingOrWrongKeyOfTheOptionsIsZeroAlone)
{
    damageEachKey(archiveOf(*changedOptions()), optionRows);
}

TEST_F(OptionsArchiveTest, EachMissingOrWrongKeyOfTheLogoIsZeroAlone)
{
    damageEachKey(archiveOf(*changedOptions()->logoContext()), logoRows);
}

TEST_F(OptionsArchiveTest, UnknownKeysAreSkipped)
{
    QCborMap map = archiveOf(*changedOptions());
    map["_somethingNew"_L1] = QCborMap { { 1, 2 } };
    map[-4] = true;
    const auto options = unarchived<VNOption>(map);
    ASSERT_TRUE(options);
    EXPECT_EQ(archivedData(*options), archivedData(*changedOptions()));
}

TEST_F(OptionsArchiveTest, BrokenBytesGiveNoObject)
{
    const QByteArray whole = archivedData(*changedOptions());
    EXPECT_FALSE(unarchived<VNOption>(QByteArray()));
    EXPECT_FALSE(unarchived<VNOption>(QByteArray("not an archive")));
    EXPECT_FALSE(unarchived<VNOption>(whole + '\0'));
    for (qsizetype length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(unarchived<VNOption>(whole.first(length))) << length;
}

TEST_F(OptionsArchiveTest, APicturesFileIsStoredAsItWasRead)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("photo.jpg"));
    ASSERT_TRUE(test::noisePicture({ 800, 600 }, 1).save(file.fileName()));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    VNLogoContext logo;
    logo.setPicture(Picture::read(file));
    const QByteArray archive = archivedData(logo);
    EXPECT_LT(archive.size(), file.size() + 1000);
    const QCborMap stored = QCborValue::fromCbor(archive).toMap()["mLogoImage"_L1].toMap();
    file.seek(0);
    EXPECT_EQ(stored["file"_L1].toByteArray(), file.readAll());
    const auto again = unarchived<VNLogoContext>(archive);
    EXPECT_EQ(again->getNSImage(), logo.getNSImage());
    EXPECT_EQ(archivedData(*again), archive) << "nothing is encoded again";
}

TEST_F(OptionsArchiveTest, APictureThatWasTooLargeComesBack)
{
    QImage picture(10000, 6000, QImage::Format_Grayscale8);
    picture.fill(Qt::gray);
    VNLogoContext logo;
    logo.setNSImage(picture);
    const auto again = unarchived<VNLogoContext>(archivedData(logo));
    EXPECT_FALSE(again->getNSImage().isNull());
    EXPECT_EQ(again->getNSImage().size(), logo.getNSImage().size());
}

TEST_F(OptionsArchiveTest, AnUndecodablePictureLeavesNone)
{
    QCborMap map = archiveOf(*changedOptions()->logoContext());
    map["mLogoImage"_L1] = QCborMap { { "png"_L1, QByteArray("\x89PNG\r\n\x1a\n broken") } };
    const auto logo = unarchived<VNLogoContext>(map);
    EXPECT_TRUE(logo->getNSImage().isNull());
    EXPECT_EQ(logo->getLogoRect().size(), QSizeF(0, 0));
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runTestsWithFonts(argc, argv);
}
