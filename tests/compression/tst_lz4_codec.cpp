#include "base/assertion.h"
#include "codec_test_support.h"
#include "compression/codecs.h"

#define LZ4_DISABLE_DEPRECATE_WARNINGS
#include <lz4.h>
#include <lz4hc.h>

#include <vector>

using namespace vornic;
using namespace vornic::test;

namespace {

const QString emptyMessage = QStringLiteral("Error compressed data.");

/// Collects assertion failures while it lives.
class CapturedAssertions
{
public:
    CapturedAssertions()
        : m_before(setAssertionHandler([this](const AssertionFailure &failure) { m_all.push_back(failure); }))
    {
    }
    ~CapturedAssertions() { setAssertionHandler(std::move(m_before)); }
    CapturedAssertions(const CapturedAssertions &) = delete;
    CapturedAssertions &operator=(const CapturedAssertions &) = delete;

    const std::vector<AssertionFailure> &all() const { return m_all; }

private:
    std::vector<AssertionFailure> m_all;
    AssertionHandler m_before;
};

QByteArray libraryBlock(const QByteArray &input, bool highCompression)
{
    const int size = static_cast<int>(input.size());
    QByteArray block(LZ4_compressBound(size), '\0');
    const int room = static_cast<int>(block.size());
    const int written = highCompression ? LZ4_compress_HC(input.constData(), block.data(), size, room, 0)
                                        : LZ4_compress_default(input.constData(), block.data(), size, room);
    return block.left(written);
}

/// LZ4_decompress_fast with so much behind the block that it cannot read or write past its buffers.
/// Nothing where it fails, where it reads past the block, and where the answer depends on what was in
/// memory before (a match at distance 0).
std::optional<QByteArray> decompressFast(const QByteArray &framed)
{
    const auto length = static_cast<int>(lengthOf<quint32>(framed));
    const QByteArray block = framed.mid(4) + QByteArray(length + 64, '\0');
    QByteArray output(length, '\0');
    const int read = LZ4_decompress_fast(block.constData(), output.data(), length);
    QByteArray again(length, '\x55');
    LZ4_decompress_fast(block.constData(), again.data(), length);
    if (read < 0 || read > framed.size() - 4 || again != output)
        return std::nullopt;
    return output;
}

} // namespace

class Lz4Samples : public SampleTest
{
};

TEST_P(Lz4Samples, AreTheLengthAndABlockAsTheLibraryWritesIt)
{
    const auto length = static_cast<quint32>(input().size());
    EXPECT_EQ(lz4CompressWithLevel(input(), 0), withLength(length, libraryBlock(input(), false)));
    EXPECT_EQ(lz4CompressWithLevel(input(), 1), withLength(length, libraryBlock(input(), true)));
    EXPECT_EQ(lz4Compress(input()), lz4CompressWithLevel(input(), 0));
}

TEST_P(Lz4Samples, ComeBack)
{
    if (input().isEmpty())
        return;
    const CapturedLog log;
    for (const int level : { 0, 1 }) {
        const QByteArray framed = *lz4CompressWithLevel(input(), level);
        EXPECT_EQ(lz4UnCompress(framed), input());
        EXPECT_EQ(lz4UnCompress(framed + "trailing bytes"), input());
        EXPECT_EQ(lz4UnCompress(framed + QByteArray(100, '\0')), input());
    }
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_P(Lz4Samples, AreRefusedWithoutAWordWhenDamaged)
{
    if (input().isEmpty())
        return;
    const CapturedLog log;
    const QByteArray framed = *lz4Compress(input());
    const auto length = static_cast<quint32>(input().size());
    EXPECT_FALSE(lz4UnCompress(framed.chopped(1)));
    EXPECT_FALSE(lz4UnCompress(framed.left(4)));
    EXPECT_FALSE(lz4UnCompress(withLength(length + 1, framed.mid(4))));
    EXPECT_TRUE(log.lines().isEmpty());
    EXPECT_FALSE(lz4UnCompress(withLength(length - 1, framed.mid(4))));
}

TEST_P(Lz4Samples, AreDecodedOrRefusedAsByTheFastDecoder)
{
    if (input().isEmpty() || input().size() > 5000)
        return;
    const QByteArray whole = *lz4Compress(input());
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        QByteArray framed = whole;
        const auto at = static_cast<qsizetype>(4 + random() % static_cast<unsigned>(whole.size() - 4));
        if (round % 3 == 0)
            framed.truncate(at);
        else
            framed[at] = static_cast<char>(random() & 255U);
        if (round % 5 == 0)
            framed = withLength(1 + random() % 6000U, framed.mid(4));
        EXPECT_EQ(lz4UnCompress(framed), decompressFast(framed)) << framed.toHex().constData();
    }
}

INSTANTIATE_TEST_SUITE_P(All, Lz4Samples, testing::ValuesIn(allSamples()), sampleName);

TEST(Lz4Codec, HighCompressionIsSmaller)
{
    const QByteArray text = sampleOf(Content::Text, 100000);
    EXPECT_LT(lz4CompressWithLevel(text, 1)->size(), lz4CompressWithLevel(text, 0)->size());
}

TEST(Lz4Codec, KeepsWhatDoesNotGetSmaller)
{
    const QByteArray random = sampleOf(Content::Random, 1000);
    EXPECT_GT(lz4Compress(random)->size(), random.size());
}

TEST(Lz4Codec, CannotUncompressTheCompressedEmptyBuffer)
{
    const CapturedLog log;
    const auto framed = lz4Compress({});
    ASSERT_TRUE(framed);
    EXPECT_EQ(framed->left(4), QByteArray(4, '\0'));
    EXPECT_TRUE(log.lines().isEmpty());
    EXPECT_FALSE(lz4UnCompress(*framed));
    EXPECT_EQ(log.lines(), QStringList { emptyMessage });
}

TEST(Lz4Codec, TakesAnInputWithoutALengthForALengthOfZero)
{
    for (int size = 0; size < 4; ++size) {
        const CapturedLog log;
        EXPECT_FALSE(lz4UnCompress(QByteArray(size, '\x01')));
        EXPECT_EQ(log.lines(), QStringList { emptyMessage }) << size;
    }
}

TEST(Lz4Codec, OtherLevelsAreAnAssertionFailure)
{
    for (const int level : { 2, 9, -1 }) {
        const CapturedAssertions assertions;
        const CapturedLog log;
        EXPECT_FALSE(lz4CompressWithLevel("some bytes", level));
        ASSERT_EQ(assertions.all().size(), 1U);
        const AssertionFailure &failure = assertions.all().front();
        EXPECT_EQ(failure.operation, QStringLiteral("lz4CompressWithLevel:"));
        EXPECT_EQ(failure.file, QStringLiteral("NSData+Compression"));
        EXPECT_EQ(failure.line, 268);
        EXPECT_EQ(failure.description, QStringLiteral("Invalid Compression Level"));
        EXPECT_TRUE(log.lines().isEmpty());
    }
}

TEST(Lz4Codec, RefusesALengthThatCannotBe)
{
    for (const quint32 length : { 0xffffffffU, 0x80000000U, 0x7fffffffU, 100000U }) {
        EXPECT_FALSE(lz4UnCompress(withLength(length, QByteArray(100, '\0'))));
        EXPECT_FALSE(lz4UnCompress(withLength(length, QByteArray(100, '\xff'))));
        EXPECT_FALSE(lz4UnCompress(withLength(length, {})));
    }
}

TEST(Lz4Codec, KnowsHowABlockEnds)
{
    // One literal, a match of 4 + n at distance 1, five literals: whole, and each condition broken.
    const auto block = [](const char *matchToken, const char *distance, const char *end) {
        return QByteArray::fromHex(matchToken) + 'x' + QByteArray::fromHex(distance)
            + QByteArray::fromHex(end);
    };
    EXPECT_EQ(lz4UnCompress(withLength(13U, block("13", "0100", "506162636465"))),
              QByteArray("xxxxxxxxabcde"));
    EXPECT_FALSE(
        lz4UnCompress(withLength(12U, block("13", "0100", "4061626364")))); // four literals at the end
    EXPECT_FALSE(
        lz4UnCompress(withLength(12U, block("12", "0100", "506162636465")))); // match starts too late
    EXPECT_FALSE(lz4UnCompress(withLength(13U, block("13", "0000", "506162636465")))); // distance 0
    EXPECT_FALSE(lz4UnCompress(withLength(13U, block("13", "0200", "506162636465")))); // before the start
    EXPECT_FALSE(lz4UnCompress(withLength(8U, block("13", "0100", "506162636465"))));  // ends within a match
}

TEST(Lz4Codec, RefusesMoreThanABlockTakes)
{
    const HugeZeros zeros(std::size_t(LZ4_MAX_INPUT_SIZE) + 1);
    const HugeZeros wrapping((std::size_t(1) << 32) + 100); // 100 where only 32 bits are counted
    if (!zeros.isThere() || !wrapping.isThere())
        GTEST_SKIP() << "4 GiB of addresses are not to be had";
    EXPECT_FALSE(lz4Compress(zeros.bytes()));
    EXPECT_FALSE(lz4CompressWithLevel(zeros.bytes(), 1));
    EXPECT_FALSE(lz4Compress(wrapping.bytes()));
}
