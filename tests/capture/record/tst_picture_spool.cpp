#include "base/PKTimebase.h"
#include "base/keyed_archive.h"
#include "capture/capture_fixture.h"
#include "capture/jpeg/jpeg_codec.h"
#include "capture/jpeg/jpeg_picture.h"
#include "capture/record/picture_keys.h"
#include "capture/record/picture_spooler.h"
#include "capture/record/picture_unspooler.h"
#include "support/fuzz_run.h"
#include "support/test_pictures.h"

#include <QCborMap>
#include <QCborValue>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <string>
#include <utility>

namespace vornic {
namespace {

using test::noisePicture;

constexpr QSize screenSize(48, 200);
constexpr std::uint64_t passTicks = PKTimebase / 30;
constexpr std::uint64_t twoSeconds = 2 * std::uint64_t { PKTimebase };

QByteArray inOnePiece(const QImage &picture)
{
    return jpegCompress(picture.constBits(), picture.width(), picture.height(), picture.bytesPerLine())
        .value_or(QByteArray());
}

enum class Form { Nothing, Whole, Changes, Mark };

Form formOf(const QByteArray &archive)
{
    const auto unarchiver = KeyedUnarchiver::create(archive);
    if (!unarchiver)
        return Form::Nothing;
    const std::array forms { std::pair(pictureKey, Form::Whole),
                             std::pair(changedBandsKey, Form::Changes),
                             std::pair(samePictureKey, Form::Mark) };
    Form form = Form::Nothing;
    for (const auto &[key, itsForm] : forms) {
        if (!unarchiver->containsValueForKey(key))
            continue;
        EXPECT_EQ(form, Form::Nothing) << "a record tells its picture twice";
        form = itsForm;
    }
    return form;
}

/// A screen that changes at random, with what a grab of it must give.
class RandomScreen
{
public:
    /// Changes some bands, all, none, or the size.
    void change()
    {
        m_changed = 0;
        // A picture that changes as a whole is rare, so that one is often due.
        const int kind = below(400);
        if (kind == 0) {
            const QSize size(16 + below(60), 100 + below(120));
            m_changed = size == m_picture.size() ? 0 : bandCount(size.height());
            if (m_changed > 0)
                m_picture = noisePicture(size, m_random.next());
        } else if (kind == 1) {
            changeBands([](int) { return true; });
        } else if (kind < 240) {
            const int oneIn = 3 + below(12);
            changeBands([&](int) { return below(oneIn) == 0; });
        }
    }

    [[nodiscard]] const QImage &picture() const { return m_picture; }
    /// By the last change().
    [[nodiscard]] int changedBandCount() const { return m_changed; }
    int below(int limit) { return m_random.below(limit); }

private:
    void changeBands(const std::function<bool(int)> &isWanted)
    {
        for (int band = 0; band < bandCount(m_picture.height()); ++band) {
            if (!isWanted(band))
                continue;
            const int first = band * BitmapImage::bandHeight;
            const int rows = std::min(BitmapImage::bandHeight, m_picture.height() - first);
            m_picture.setPixel(below(m_picture.width()), first + below(rows), m_random.next());
            m_picture.setPixel(m_picture.width() - 1, first, 0xff000000U | ++m_colour);
            ++m_changed;
        }
    }

    test::FuzzRandom m_random { 12 };
    QImage m_picture = noisePicture(screenSize, 1);
    int m_changed = bandCount(screenSize.height());
    QRgb m_colour = 0;
};

class PictureSpoolTest : public CaptureTest
{
protected:
    QByteArray archiveOf(const QImage &picture, std::uint64_t ticks)
    {
        KeyedArchiver archiver;
        m_spooler.encode(grabOf(picture), ticks, archiver);
        return archiver.bytes();
    }

    std::shared_ptr<const JpegPicture> read(const QByteArray &archive)
    {
        const auto unarchiver = KeyedUnarchiver::create(archive);
        return unarchiver ? m_unspooler.decode(*unarchiver) : nullptr;
    }

    /// Fails where two bands that are not the same bear the same version.
    void expectVersionsToHold(const JpegPicture &picture)
    {
        for (int band = 0; band < static_cast<int>(picture.bandVersions().size()); ++band) {
            const std::uint64_t version = picture.bandVersions()[static_cast<std::size_t>(band)];
            const auto [known, isNew]
                = m_bandOfVersion.try_emplace(version, picture.bandBytes(band).toByteArray());
            if (!isNew) {
                EXPECT_EQ(known->second, picture.bandBytes(band).toByteArray()) << "band " << band;
            }
        }
    }

    PictureSpooler m_spooler;
    PictureUnspooler m_unspooler;
    std::map<std::uint64_t, QByteArray> m_bandOfVersion;
};

TEST_F(PictureSpoolTest, WhatIsReadBackIsWhatWasPushedThroughThousandsOfChanges)
{
    RandomScreen screen;
    std::map<Form, int> forms;
    int due = 0;
    std::vector<std::uint64_t> versions;
    std::uint64_t ticks = 0;
    for (int step = 0; step < 4000; ++step, ticks += passTicks) {
        const QByteArray archive = archiveOf(screen.picture(), ticks);
        ++forms[formOf(archive)];
        due += KeyedUnarchiver::create(archive)->containsValueForKey(newBandsKey) ? 1 : 0;
        const auto picture = read(archive);
        ASSERT_TRUE(picture) << step;
        ASSERT_EQ(picture->jpeg(), inOnePiece(screen.picture())) << step;
        const std::vector<bool> changed = changedBandsOf(picture->bandVersions(), versions);
        ASSERT_EQ(std::count(changed.begin(), changed.end(), true), screen.changedBandCount()) << step;
        expectVersionsToHold(*picture);
        versions = picture->bandVersions();
        screen.change();
    }
    EXPECT_EQ(forms[Form::Nothing], 0);
    EXPECT_GT(due, 30);
    EXPECT_GT(forms[Form::Whole], due + 10);
    EXPECT_GT(forms[Form::Changes], 500);
    EXPECT_GT(forms[Form::Mark], 500);
}

TEST_F(PictureSpoolTest, OnlyTheBandsThatChangedAreStored)
{
    QImage picture = noisePicture(screenSize, 1);
    const qsizetype whole = archiveOf(picture, 0).size();
    picture.setPixel(3, 20, 0);
    picture.setPixel(3, 100, 0);
    const QByteArray archive = archiveOf(picture, 3000);
    EXPECT_EQ(formOf(archive), Form::Changes);
    EXPECT_LT(archive.size(), whole / 5); // 2 of 13 bands
    EXPECT_EQ(formOf(archiveOf(noisePicture(screenSize, 2), 6000)), Form::Whole);
}

TEST_F(PictureSpoolTest, BandsThatStayAreNotCopied)
{
    QImage picture = noisePicture(screenSize, 1);
    const auto first = read(archiveOf(picture, 0));
    ASSERT_TRUE(first);
    const auto same = read(archiveOf(picture, 1000));
    EXPECT_EQ(same, first);
    picture.setPixel(3, 20, 0);
    const auto second = read(archiveOf(picture, 3000));
    ASSERT_TRUE(second);
    EXPECT_EQ(second->bandBytes(0).data(), first->bandBytes(0).data());
    EXPECT_NE(second->bandBytes(1).data(), first->bandBytes(1).data());
}

TEST_F(PictureSpoolTest, AWholePictureStandsAtLeastEveryTwoSeconds)
{
    RandomScreen screen;
    std::uint64_t ticks = 0;
    std::uint64_t lastWhole = 0;
    for (int step = 0; step < 2000; ++step) {
        if (formOf(archiveOf(screen.picture(), ticks)) == Form::Whole)
            lastWhole = ticks;
        ASSERT_LT(ticks - lastWhole, twoSeconds) << step;
        screen.change();
        ticks += static_cast<std::uint64_t>(screen.below(static_cast<int>(twoSeconds / 4)));
    }
}

TEST_F(PictureSpoolTest, AWholePictureThatIsDueTellsWhichBandsAreNew)
{
    QImage picture = noisePicture(screenSize, 1);
    const auto first = read(archiveOf(picture, 0));
    ASSERT_TRUE(first);
    const QByteArray due = archiveOf(picture, twoSeconds);
    EXPECT_EQ(formOf(due), Form::Whole);
    const auto second = read(due);
    ASSERT_TRUE(second);
    EXPECT_EQ(second->bandVersions(), first->bandVersions());
    EXPECT_NE(second->bandBytes(0).data(), first->bandBytes(0).data()); // old blocks are let go

    picture.setPixel(3, 199, 0);
    const QByteArray later = archiveOf(picture, 2 * twoSeconds);
    EXPECT_EQ(formOf(later), Form::Whole);
    const auto third = read(later);
    ASSERT_TRUE(third);
    std::vector<bool> last(first->bandVersions().size());
    last.back() = true;
    EXPECT_EQ(changedBandsOf(third->bandVersions(), second->bandVersions()), last);

    m_unspooler.forgetPicture();
    const auto afterLoss = read(later);
    ASSERT_TRUE(afterLoss);
    const std::vector<bool> changed = changedBandsOf(afterLoss->bandVersions(), third->bandVersions());
    EXPECT_TRUE(std::ranges::all_of(changed, std::identity()));
}

TEST_F(PictureSpoolTest, ATimestampThatGoesBackBringsAWholePicture)
{
    QImage picture = noisePicture(screenSize, 1);
    archiveOf(picture, 5000);
    picture.setPixel(3, 20, 0);
    EXPECT_EQ(formOf(archiveOf(picture, 4999)), Form::Whole);
}

/// Versions say something of pictures of the same size only.
TEST_F(PictureSpoolTest, APictureOfAnotherSizeIsWrittenWhole)
{
    const auto wide = bitmapImageFrom(noisePicture({ 64, 32 }, 1));
    const auto narrow = bitmapImageFrom(noisePicture({ 48, 32 }, 2), wide->bandVersions());
    for (const auto &image : { wide, narrow }) {
        KeyedArchiver archiver;
        m_spooler.encode(image, 0, archiver);
        EXPECT_EQ(formOf(archiver.bytes()), Form::Whole) << image->width();
    }
}

TEST_F(PictureSpoolTest, ANewSpoolBeginsWithAWholePictureOfItsOwn)
{
    QImage picture = noisePicture(screenSize, 1);
    archiveOf(picture, 0);
    picture.setPixel(3, 20, 0);
    m_spooler.beginPart();
    const QByteArray archive = archiveOf(picture, 1000);
    EXPECT_EQ(formOf(archive), Form::Whole);
    EXPECT_FALSE(KeyedUnarchiver::create(archive)->containsValueForKey(newBandsKey));
}

TEST_F(PictureSpoolTest, ARecordWithoutAPictureIsFollowedByAWholeOne)
{
    QImage picture = noisePicture(screenSize, 1);
    archiveOf(picture, 0);
    KeyedArchiver nothing;
    m_spooler.encode(nullptr, 1000, nothing);
    EXPECT_EQ(formOf(nothing.bytes()), Form::Nothing);
    picture.setPixel(3, 20, 0);
    EXPECT_EQ(formOf(archiveOf(picture, 2000)), Form::Whole);
}

TEST_F(PictureSpoolTest, AfterALossNothingIsShownUntilAWholePicture)
{
    RandomScreen screen;
    bool isKnown = false;
    int lost = 0;
    int unknown = 0;
    std::uint64_t ticks = 0;
    for (int step = 0; step < 4000; ++step, ticks += passTicks) {
        const QByteArray archive = archiveOf(screen.picture(), ticks);
        if (screen.below(50) == 0) {
            ++lost;
            m_unspooler.forgetPicture();
            isKnown = false;
        } else {
            isKnown = isKnown || formOf(archive) == Form::Whole;
            const auto picture = read(archive);
            ASSERT_EQ(picture != nullptr, isKnown) << step;
            if (picture) {
                ASSERT_EQ(picture->jpeg(), inOnePiece(screen.picture())) << step;
                expectVersionsToHold(*picture);
            } else {
                ++unknown;
            }
        }
        screen.change();
    }
    EXPECT_GT(lost, 40);
    EXPECT_GT(unknown, lost);
}

/// A record that tells two bands of a picture, the first of them the second from the top, and its bytes.
class DamagedChangesTest : public PictureSpoolTest
{
protected:
    DamagedChangesTest()
    {
        QImage picture = noisePicture(screenSize, 1);
        m_whole = archiveOf(picture, 0);
        picture.setPixel(3, 20, 0);
        picture.setPixel(3, 100, 0);
        m_changes = QCborValue::fromCbor(archiveOf(picture, 1000)).toMap()[changedBandsKey].toByteArray();
        m_mark = archiveOf(picture, 2000);
    }

    /// What a record with \a changes gives behind the whole picture.
    std::shared_ptr<const JpegPicture> readChanges(const QByteArray &changes)
    {
        EXPECT_TRUE(read(m_whole));
        KeyedArchiver archiver;
        archiver.encodeData(changedBandsKey, changes);
        return read(archiver.bytes());
    }

    /// m_changes with the number of \a Number's size at \a offset replaced.
    template<typename Number>
    [[nodiscard]] QByteArray withNumber(qsizetype offset, Number number) const
    {
        QByteArray changes = m_changes;
        qToBigEndian(number, changes.data() + offset);
        return changes;
    }
    [[nodiscard]] quint32 lengthOfFirst() const { return qFromBigEndian<quint32>(m_changes.constData() + 8); }

    QByteArray m_whole;
    QByteArray m_changes;
    QByteArray m_mark;
};

TEST_F(DamagedChangesTest, NumbersThatDoNotFitAreRefused)
{
    ASSERT_TRUE(readChanges(m_changes));
    const std::map<std::string, QByteArray> damaged {
        { "width", withNumber<quint16>(0, 49) },
        { "height", withNumber<quint16>(2, 199) },
        { "one band fewer", withNumber<quint16>(4, 1) },
        { "one band more", withNumber<quint16>(4, 3) },
        { "as many bands as can be told", withNumber<quint16>(4, 0xFFFF) },
        { "a band that is not there", withNumber<quint16>(12, 13) },
        { "the same band twice", withNumber<quint16>(12, 1) },
        { "bands in descending order", withNumber<quint16>(6, 7) },
        { "a length beyond the end", withNumber<quint32>(8, 0xFFFFFFFF) },
        { "a shorter band", withNumber<quint32>(8, lengthOfFirst() - 1) },
        { "a longer band", withNumber<quint32>(8, lengthOfFirst() + 1) },
        { "an empty band", withNumber<quint32>(8, 0) },
        { "one byte more", m_changes + 'x' },
        { "a marker in a band", withNumber<quint16>(20, 0xFFD0) },
        { "nothing", QByteArray() },
    };
    for (const auto &[what, changes] : damaged) {
        EXPECT_FALSE(readChanges(changes)) << what;
        EXPECT_FALSE(read(m_mark)) << what << ", and the mark behind it";
    }
    for (qsizetype length = 0; length < m_changes.size(); ++length)
        EXPECT_FALSE(readChanges(m_changes.first(length))) << length;
}

TEST_F(DamagedChangesTest, RandomDamageGivesThePictureItsSizeOrNothing)
{
    test::FuzzRandom random(5);
    int read = 0;
    int decoded = 0;
    for (int turn = 0; turn < 3000; ++turn) {
        QByteArray changes = m_changes;
        constexpr qsizetype numbersLength = 18;
        const int place = random.below(turn % 2 == 0 ? numbersLength : changes.size());
        changes[place] = static_cast<char>(changes[place] ^ (1 << random.below(8)));
        if (const auto picture = readChanges(changes)) {
            ++read;
            ASSERT_EQ(picture->size(), screenSize);
            ASSERT_EQ(picture->bandVersions().size(), static_cast<std::size_t>(bandCount(200)));
            decoded += picture->image() ? 1 : 0;
        }
    }
    EXPECT_GT(read, 1000);
    EXPECT_GT(decoded, 10);
}

TEST_F(DamagedChangesTest, DamageInTheListOfNewBandsMakesAllNew)
{
    auto before = read(m_whole);
    ASSERT_TRUE(before);
    QCborMap map = QCborValue::fromCbor(m_whole).toMap();
    const auto newBands = [&](const QByteArray &bits) -> std::ptrdiff_t {
        map[newBandsKey] = bits;
        const auto picture = read(map.toCborValue().toCbor());
        if (!picture)
            return -1;
        const std::vector<bool> changed
            = changedBandsOf(picture->bandVersions(), std::exchange(before, picture)->bandVersions());
        return std::count(changed.begin(), changed.end(), true);
    };
    EXPECT_EQ(newBands(QByteArray(2, '\0')), 0);
    for (const qsizetype length : { 0, 1, 3, 1000 })
        EXPECT_EQ(newBands(QByteArray(length, '\0')), bandCount(screenSize.height())) << length;
}

} // namespace
} // namespace vornic
