#include "codec_test_support.h"
#include "compression/codecs.h"

#include <fastlz.h>

using namespace vornic;
using namespace vornic::test;

namespace {

const QStringList notCompressed = { QStringLiteral("Not compressed.") };

QByteArray libraryBlock(const QByteArray &input)
{
    QByteArray block(input.size() + input.size() / 10 + 100, '\0');
    return block.left(fastlz_compress(input.constData(), static_cast<int>(input.size()), block.data()));
}

int levelOf(const QByteArray &framed)
{
    return (static_cast<unsigned char>(framed.at(8)) >> 5) + 1;
}

} // namespace

class FastLzSamples : public SampleTest
{
};

TEST_P(FastLzSamples, ComeBackOrAreGivenBack)
{
    const CapturedLog log;
    const QByteArray framed = fastLZCompress(input());
    if (input().size() < 17) {
        EXPECT_TRUE(isSameBuffer(framed, input()));
        EXPECT_TRUE(log.lines().isEmpty());
        return;
    }
    const QByteArray block = libraryBlock(input());
    if (block.size() < input().size()) {
        EXPECT_EQ(framed, withLength(static_cast<quint64>(input().size()), block));
        EXPECT_EQ(fastLZUnCompress(framed), input());
        EXPECT_TRUE(log.lines().isEmpty());
    } else {
        EXPECT_TRUE(isSameBuffer(framed, input()));
        EXPECT_EQ(log.lines(), notCompressed);
    }
}

TEST_P(FastLzSamples, HaveTheStoredLengthHoweverDamaged)
{
    const CapturedLog log;
    const QByteArray whole = fastLZCompress(input());
    if (isSameBuffer(whole, input()))
        return;
    std::mt19937 random(3);
    for (int round = 0; round < 50; ++round) {
        QByteArray framed = whole;
        const auto at = static_cast<qsizetype>(8 + random() % static_cast<unsigned>(whole.size() - 8));
        framed[at] = static_cast<char>(random() & 255U);
        if (round % 2 == 0)
            framed.truncate(std::max<qsizetype>(at, 17));
        const QByteArray output = fastLZUnCompress(framed);
        if (input().size() > (framed.size() - 8) * 255) {
            EXPECT_TRUE(isSameBuffer(output, framed));
            continue;
        }
        EXPECT_EQ(output.size(), input().size());
        EXPECT_EQ(fastLZUnCompress(framed), output);
    }
    EXPECT_TRUE(log.lines().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(All, FastLzSamples, testing::ValuesIn(allSamples()), sampleName);

TEST(FastLzCodec, LeavesSixteenBytesAlone)
{
    const CapturedLog log;
    const QByteArray sixteen = sampleOf(Content::Zeros, 16);
    EXPECT_TRUE(isSameBuffer(fastLZCompress(sixteen), sixteen));
    EXPECT_TRUE(isSameBuffer(fastLZUnCompress(sixteen), sixteen));
    const QByteArray empty = ownEmptyBuffer();
    EXPECT_TRUE(isSameBuffer(fastLZCompress(empty), empty));
    EXPECT_TRUE(isSameBuffer(fastLZUnCompress(empty), empty));
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST(FastLzCodec, CompressesSeventeenBytesOrSaysThatItCannot)
{
    const CapturedLog log;
    const QByteArray zeros = sampleOf(Content::Zeros, 17);
    const QByteArray framed = fastLZCompress(zeros);
    EXPECT_EQ(lengthOf<quint64>(framed), 17U);
    EXPECT_LT(framed.size(), 17 + 8);
    EXPECT_EQ(fastLZUnCompress(framed), zeros);
    EXPECT_TRUE(log.lines().isEmpty());

    const QByteArray random = sampleOf(Content::Random, 17);
    EXPECT_TRUE(isSameBuffer(fastLZCompress(random), random));
    EXPECT_EQ(log.lines(), notCompressed);
}

TEST(FastLzCodec, ABlockAsLargeAsItsInputIsNoGain)
{
    // Random bytes cost a byte for every 32 of them; a repeat behind them gains, the more the longer it is.
    const QByteArray random = sampleOf(Content::Random, 200);
    QByteArray input;
    for (qsizetype repeated = 0; repeated < random.size() && input.isEmpty(); ++repeated) {
        const QByteArray candidate = random + random.first(repeated);
        if (libraryBlock(candidate).size() == candidate.size())
            input = candidate;
    }
    ASSERT_FALSE(input.isEmpty());
    const CapturedLog log;
    EXPECT_TRUE(isSameBuffer(fastLZCompress(input), input));
    EXPECT_EQ(log.lines(), notCompressed);
}

TEST(FastLzCodec, TheFramedResultMayBeLongerThanTheInput)
{
    // Twenty different bytes and a short repeat: the block gains less than the length in front of it takes.
    const QByteArray input = "abcdefghijklmnopqrstabcdefghijklm";
    const QByteArray framed = fastLZCompress(input + "0123456789");
    EXPECT_EQ(fastLZUnCompress(framed), input + "0123456789");
    EXPECT_FALSE(framed == input + "0123456789");
    EXPECT_LE(framed.size(), input.size() + 10 + 7);
}

TEST(FastLzCodec, LevelTwoBeginsAt65536Bytes)
{
    EXPECT_EQ(levelOf(fastLZCompress(sampleOf(Content::Text, 65535))), 1);
    EXPECT_EQ(levelOf(fastLZCompress(sampleOf(Content::Text, 65536))), 2);
}

TEST(FastLzCodec, GivesAStoredLengthOfZeroBack)
{
    const CapturedLog log;
    const QByteArray framed = withLength(quint64(0), QByteArray(20, 'x'));
    EXPECT_TRUE(isSameBuffer(fastLZUnCompress(framed), framed));
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST(FastLzCodec, GivesALengthThatCannotBeBack)
{
    const QByteArray block(20, '\0');
    for (const quint64 length : { quint64(20 * 255 + 1), quint64(1) << 32, quint64(1) << 62, ~quint64(0) }) {
        const QByteArray framed = withLength(length, block);
        EXPECT_TRUE(isSameBuffer(fastLZUnCompress(framed), framed)) << length;
    }
    EXPECT_EQ(fastLZUnCompress(withLength(quint64(20 * 255), block)).size(), 20 * 255);
}

TEST(FastLzCodec, FillsUpWithZeros)
{
    // Two literals, then the stored length asks for more than the block tells.
    const QByteArray literals = QByteArray::fromHex("07") + "abcdefgh";
    EXPECT_EQ(fastLZUnCompress(withLength(quint64(100), literals)), "abcdefgh" + QByteArray(92, '\0'));
    // A level that does not exist: nothing is decoded.
    EXPECT_EQ(fastLZUnCompress(withLength(quint64(50), QByteArray(10, '\xff'))), QByteArray(50, '\0'));
    // Eight good bytes, then literals that the block no longer holds.
    EXPECT_EQ(fastLZUnCompress(withLength(quint64(50), literals + QByteArray::fromHex("1f61"))),
              "abcdefgh" + QByteArray(42, '\0'));
}

// The library's decoder reads on behind a match that is cut off: it must find zeros there, not what
// happens to lie in memory.
TEST(FastLzCodec, ReadsNothingBehindItsInput)
{
    const QByteArray levelOne = QByteArray::fromHex("07") + "abcdefgh";
    const QByteArray levelTwo = QByteArray::fromHex("27") + "abcdefgh";
    for (const QByteArray &start : { levelOne, levelTwo }) {
        for (const char *cut : { "e0", "ff", "e0ff", "ffff", "e0ffffff", "ff00ff", "3f", "3fff", "3fff00" }) {
            const QByteArray framed = withLength(quint64(1500), start + QByteArray::fromHex(cut));
            // The same bytes in the middle of a larger buffer.
            const QByteArray around = framed + QByteArray(64, '\x5a');
            const QByteArray view = QByteArray::fromRawData(around.constData(), framed.size());
            EXPECT_EQ(fastLZUnCompress(view), fastLZUnCompress(framed)) << cut;
        }
    }
}

TEST(FastLzCodec, TakesTheDensestBlockThereIs)
{
    const QByteArray zeros = sampleOf(Content::Zeros, 10'000'000);
    const QByteArray framed = fastLZCompress(zeros);
    EXPECT_GT(zeros.size() / framed.size(), 250);
    EXPECT_EQ(fastLZUnCompress(framed), zeros);
}

TEST(FastLzCodec, GivesBackMoreThanItCanCount)
{
    const HugeZeros zeros(std::size_t(1) << 31);
    const HugeZeros wrapping((std::size_t(1) << 32) + 100); // 100 where only 32 bits are counted
    if (!zeros.isThere() || !wrapping.isThere())
        GTEST_SKIP() << "4 GiB of addresses are not to be had";
    const CapturedLog log;
    for (const QByteArray &input : { zeros.bytes(), wrapping.bytes() })
        EXPECT_TRUE(isSameBuffer(fastLZCompress(input), input));
    EXPECT_EQ(log.lines(), notCompressed + notCompressed);
}
