#include "audio/PKAudioRecorderData.h"
#include "audio/chunk_keys.h"
#include "audio/chunk_spooler.h"
#include "audio/chunk_unspooler.h"
#include "base/keyed_archive.h"

#include <QCborMap>
#include <QCborValue>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <set>

namespace vornic {
namespace {

AudioStreamBasicDescription otherFormat()
{
    AudioStreamBasicDescription format = defaultAudioStreamBasicDescription();
    format.mSampleRate = 44'100;
    return format;
}

class ChunkSpoolTest : public testing::Test
{
protected:
    QByteArray archiveOf(const PKAudioRecorderData &chunk)
    {
        KeyedArchiver archiver;
        m_spooler.encode(chunk, archiver);
        return archiver.bytes();
    }
    QByteArray archiveOf(const QByteArray &samples,
                         const AudioStreamBasicDescription &format = defaultAudioStreamBasicDescription())
    {
        return archiveOf(PKAudioRecorderData(samples, format));
    }
    static bool hasFormat(const QByteArray &archive)
    {
        const auto unarchiver = KeyedUnarchiver::create(archive);
        return unarchiver && unarchiver->containsValueForKey(chunkFormatKey);
    }

    std::optional<PKAudioRecorderData> read(const QByteArray &archive)
    {
        const auto unarchiver = KeyedUnarchiver::create(archive);
        return unarchiver ? m_unspooler.decode(*unarchiver) : std::nullopt;
    }
    void expectRead(const QByteArray &archive,
                    const QByteArray &samples,
                    const AudioStreamBasicDescription &format = defaultAudioStreamBasicDescription())
    {
        const auto chunk = read(archive);
        ASSERT_TRUE(chunk) << samples.constData();
        EXPECT_EQ(chunk->data(), samples);
        EXPECT_EQ(chunk->dataFormat(), format);
    }

    ChunkSpooler m_spooler;
    ChunkUnspooler m_unspooler;
};

TEST_F(ChunkSpoolTest, ChunksComeBackWithTheirFormats)
{
    for (int i = 0; i < 1000; ++i) {
        const AudioStreamBasicDescription format
            = i / 7 % 3 == 0 ? otherFormat() : defaultAudioStreamBasicDescription();
        const QByteArray samples = QByteArray::number(i);
        expectRead(archiveOf(samples, format), samples, format);
    }
}

TEST_F(ChunkSpoolTest, AFormatIsWrittenWhereItIsNewAndWithEveryHundredthChunk)
{
    EXPECT_EQ(archiveOf("first"),
              archivedData(PKAudioRecorderData("first", defaultAudioStreamBasicDescription())));
    for (int i = 1; i <= 250; ++i)
        EXPECT_EQ(hasFormat(archiveOf("abcd")), i % 100 == 0) << i;
    EXPECT_TRUE(hasFormat(archiveOf("abcd", otherFormat())));
    EXPECT_FALSE(hasFormat(archiveOf("abcd", otherFormat())));
    m_spooler.beginSpool();
    EXPECT_TRUE(hasFormat(archiveOf("abcd", otherFormat())));
}

TEST_F(ChunkSpoolTest, WithoutItsFormatAChunkTakesLittleMoreThanItsSamples)
{
    const QByteArray samples(3840, 's');
    archiveOf(samples);
    EXPECT_LT(archiveOf(samples).size(), samples.size() + 60);
}

TEST_F(ChunkSpoolTest, ALostChunkCostsNoOther)
{
    expectRead(archiveOf("0"), "0");
    archiveOf("lost");
    expectRead(archiveOf("1"), "1");
    EXPECT_FALSE(read("damaged"));
    expectRead(archiveOf("2"), "2");
}

TEST_F(ChunkSpoolTest, AChunkIsNeverReadInAnotherFormat)
{
    expectRead(archiveOf("0"), "0");
    archiveOf("lost, with a new format", otherFormat());
    const QByteArray second = archiveOf("1", otherFormat());
    EXPECT_FALSE(hasFormat(second));
    EXPECT_FALSE(read(second));
    for (int i = 0; i < 98; ++i)
        EXPECT_FALSE(read(archiveOf("2", otherFormat())));
    expectRead(archiveOf("3", otherFormat()), "3", otherFormat());
}

TEST_F(ChunkSpoolTest, ASpoolThatBeginsWithoutAFormatGivesNothing)
{
    const QByteArray first = archiveOf("0");
    const QByteArray second = archiveOf("1");
    EXPECT_FALSE(read(second));
    expectRead(first, "0");
    expectRead(second, "1");
    m_unspooler.forget();
    EXPECT_FALSE(read(second));
}

TEST_F(ChunkSpoolTest, DamageGivesNothing)
{
    const QByteArray first = archiveOf("0");
    const QByteArray second = archiveOf("1");
    expectRead(first, "0");
    QCborMap map = QCborValue::fromCbor(second).toMap();
    map[sameFormatKey] = map[sameFormatKey].toInteger() + 1;
    EXPECT_FALSE(read(map.toCborValue().toCbor()));
    map[sameFormatKey] = QByteArray("no number");
    EXPECT_FALSE(read(map.toCborValue().toCbor()));
    map = QCborValue::fromCbor(second).toMap();
    map.remove(chunkDataKey);
    EXPECT_FALSE(read(map.toCborValue().toCbor()));
    expectRead(second, "1");
}

TEST_F(ChunkSpoolTest, AFormatThatCannotBeEncodedGivesNothing)
{
    using Format = AudioStreamBasicDescription;
    const auto expectNothing = [this](const auto &change) {
        Format format = defaultAudioStreamBasicDescription();
        change(format);
        EXPECT_FALSE(read(archiveOf(QByteArray(400, 's'), format)));
        EXPECT_FALSE(read(archiveOf(QByteArray(400, 's'), format))) << "nor told by its checksum";
    };
    for (const std::uint32_t depth : { 0U, 7U, 24U, 32U, 0x80000008U })
        expectNothing([depth](Format &format) { format.mBitsPerChannel = depth; });
    for (const std::uint32_t channels : { 0U, 33U, 0x20000001U })
        expectNothing([channels](Format &format) { format.mChannelsPerFrame = channels; });
    constexpr double infinite = std::numeric_limits<double>::infinity();
    for (const double rate : { 0.0, 999.0, -48'000.0, 384'001.0, 1e300, infinite, std::nan("") })
        expectNothing([rate](Format &format) { format.mSampleRate = rate; });
    Format format = defaultAudioStreamBasicDescription();
    format.mBitsPerChannel = 8;
    format.mChannelsPerFrame = 32;
    expectRead(archiveOf("8 bits, 32 channels", format), "8 bits, 32 channels", format);
}

TEST_F(ChunkSpoolTest, MoreThanARecorderGivesAtOnceIsNoChunk)
{
    const AudioStreamBasicDescription format = defaultAudioStreamBasicDescription();
    EXPECT_TRUE(read(archiveOf(QByteArray(10 * 192'000, 's'))));
    EXPECT_FALSE(read(archiveOf(QByteArray(10 * 192'000 + 4, 's'))));
    EXPECT_EQ(PKAudioRecorderData(QByteArray(10 * 192'000 + 4, 's'), format).frameCount(), 0);
}

TEST_F(ChunkSpoolTest, AChunkTellsWhereItBegins)
{
    for (int i = 0; i < 250; ++i) {
        const auto chunk = read(archiveOf(QByteArray(3840, 's')));
        ASSERT_TRUE(chunk);
        EXPECT_NEAR(chunk->begin(), 0.02 * i, 1e-9);
    }
    m_spooler.beginSpool();
    archiveOf(QByteArray(4410 * 4, 's'), otherFormat());
    const auto chunk = read(archiveOf("0"));
    ASSERT_TRUE(chunk);
    EXPECT_NEAR(chunk->begin(), 0.1, 1e-9);
}

TEST_F(ChunkSpoolTest, EveryFieldCountsInTheChecksum)
{
    std::set<std::uint16_t> sums { checksumOf({}) };
    const auto add = [&](const auto &change) {
        AudioStreamBasicDescription format;
        change(format);
        EXPECT_TRUE(sums.insert(checksumOf(format)).second);
        EXPECT_EQ(checksumOf(format), checksumOf(AudioStreamBasicDescription(format)));
    };
    add([](auto &format) { format.mSampleRate = 44'100.5; });
    for (const auto member : { &AudioStreamBasicDescription::mFormatID,
                               &AudioStreamBasicDescription::mFormatFlags,
                               &AudioStreamBasicDescription::mBytesPerPacket,
                               &AudioStreamBasicDescription::mFramesPerPacket,
                               &AudioStreamBasicDescription::mBytesPerFrame,
                               &AudioStreamBasicDescription::mChannelsPerFrame,
                               &AudioStreamBasicDescription::mBitsPerChannel,
                               &AudioStreamBasicDescription::mReserved })
        add([member](auto &format) { format.*member = 1; });
}

} // namespace
} // namespace vornic
