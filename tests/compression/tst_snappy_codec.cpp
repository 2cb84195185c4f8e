#include "codec_test_support.h"
#include "compression/codecs.h"

#include <snappy-c.h>

#include <limits>

using namespace vornic;
using namespace vornic::test;

namespace {

std::size_t sizeOf(const QByteArray &buffer)
{
    return static_cast<std::size_t>(buffer.size());
}

} // namespace

class SnappySamples : public SampleTest
{
};

TEST_P(SnappySamples, ComeBack)
{
    const auto block = snappyCompress(input());
    ASSERT_TRUE(block);
    const auto output = snappyUnCompress(*block);
    ASSERT_TRUE(output);
    EXPECT_EQ(*output, input());
}

TEST_P(SnappySamples, AreBlocksAsTheLibraryWritesThem)
{
    std::size_t size = snappy_max_compressed_length(sizeOf(input()));
    QByteArray expected(static_cast<qsizetype>(size), '\0');
    ASSERT_EQ(snappy_compress(input().constData(), sizeOf(input()), expected.data(), &size), SNAPPY_OK);
    EXPECT_EQ(snappyCompress(input()), expected.left(static_cast<qsizetype>(size)));
}

TEST_P(SnappySamples, AreRefusedWhenCutShort)
{
    const QByteArray block = *snappyCompress(input());
    EXPECT_FALSE(snappyUnCompress(block.chopped(1)));
    EXPECT_FALSE(snappyUnCompress(block.left(block.size() / 2)));
    EXPECT_FALSE(snappyUnCompress(block + '\0'));
}

INSTANTIATE_TEST_SUITE_P(All, SnappySamples, testing::ValuesIn(allSamples()), sampleName);

TEST(SnappyCodec, CompressesAnEmptyBufferLikeAnyOther)
{
    EXPECT_EQ(snappyCompress({}), QByteArray(1, '\0'));
    const auto output = snappyUnCompress(QByteArray(1, '\0'));
    ASSERT_TRUE(output);
    EXPECT_TRUE(output->isEmpty());
}

TEST(SnappyCodec, BeginsWithTheLengthAndNothingElse)
{
    EXPECT_EQ(snappyCompress("abc"), QByteArray::fromHex("0308616263"));
    EXPECT_EQ(snappyCompress(sampleOf(Content::Random, 300))->left(2).toHex(), "ac02");
}

TEST(SnappyCodec, RefusesInvalidInput)
{
    EXPECT_FALSE(snappyUnCompress({}));
    EXPECT_FALSE(snappyUnCompress(QByteArray(5, '\xff')));
    EXPECT_FALSE(snappyUnCompress(QByteArray::fromHex("0408616263"))); // says 4, holds 3
    EXPECT_FALSE(snappyUnCompress(QByteArray::fromHex("0208616263"))); // says 2, holds 3
    EXPECT_FALSE(snappyUnCompress(QByteArray::fromHex("040961ff")));   // copies from before the start
}

TEST(SnappyCodec, RefusesALengthThatCannotBe)
{
    EXPECT_FALSE(snappyUnCompress(QByteArray::fromHex("ffffffff0f") + QByteArray(100, '\0')));
    EXPECT_FALSE(snappyUnCompress(QByteArray::fromHex("ffffffff0f")));
    EXPECT_FALSE(snappyUnCompress(QByteArray::fromHex("01")));
}

TEST(SnappyCodec, TakesTheDensestBlockThereIs)
{
    // A literal byte, then copies of 64 bytes at distance 1 (tag 0xfe, distance 0x0001): 21 times.
    const int copies = 2000;
    const quint32 length = 1 + 64 * copies;
    QByteArray block;
    for (quint32 rest = length; rest != 0; rest >>= 7)
        block.append(static_cast<char>((rest & 127U) | (rest > 127 ? 128U : 0U)));
    block.append(QByteArray::fromHex("0078"));
    for (int copy = 0; copy < copies; ++copy)
        block.append(QByteArray::fromHex("fe0100"));
    EXPECT_EQ(snappyUnCompress(block), QByteArray(length, 'x'));
}

TEST(SnappyCodec, RefusesMoreThanItsLengthCanTell)
{
    const HugeZeros zeros(std::size_t(std::numeric_limits<quint32>::max()) + 1);
    if (!zeros.isThere())
        GTEST_SKIP() << "4 GiB of addresses are not to be had";
    EXPECT_FALSE(snappyCompress(zeros.bytes()));
}

TEST(SnappyCodec, LogsNothing)
{
    const CapturedLog log;
    EXPECT_FALSE(snappyUnCompress("no block"));
    EXPECT_TRUE(log.lines().isEmpty());
}
