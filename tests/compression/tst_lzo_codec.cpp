#include "codec_test_support.h"
#include "compression/codecs.h"

#include <lzo/lzo1x.h>

using namespace vornic;
using namespace vornic::test;

namespace {

const QStringList incompressible = { QStringLiteral("This block contains incompressible data.") };
const QStringList failed = { QStringLiteral("Uncompress failed") };

const unsigned char *bytesOf(const QByteArray &buffer)
{
    return reinterpret_cast<const unsigned char *>(buffer.constData());
}

QByteArray libraryBlock(const QByteArray &input)
{
    QByteArray block(input.size() + input.size() / 16 + 67, '\0');
    QByteArray work(LZO1X_1_MEM_COMPRESS, '\0');
    lzo_uint size = 0;
    lzo1x_1_compress(bytesOf(input),
                     static_cast<lzo_uint>(input.size()),
                     reinterpret_cast<unsigned char *>(block.data()),
                     &size,
                     work.data());
    return block.left(static_cast<qsizetype>(size));
}

/// An LZO1X block of nothing but \a text (4 to 238 bytes).
QByteArray literalBlock(const QByteArray &text)
{
    return static_cast<char>(text.size() + 17) + text + QByteArray::fromHex("110000");
}

} // namespace

class LzoSamples : public SampleTest
{
};

TEST_P(LzoSamples, ComeBackOrAreGivenBack)
{
    const CapturedLog log;
    bool compressed = input().size() % 2 == 0;
    const QByteArray framed = LZOCompress(input(), &compressed);
    const QByteArray block = libraryBlock(input());
    if (!input().isEmpty() && block.size() <= input().size()) {
        EXPECT_TRUE(compressed);
        EXPECT_EQ(framed, withLength(static_cast<quint64>(input().size()), block));
        EXPECT_EQ(LZOUncompress(framed), input());
        EXPECT_TRUE(log.lines().isEmpty());
    } else {
        EXPECT_FALSE(compressed);
        EXPECT_TRUE(isSameBuffer(framed, input()));
        EXPECT_EQ(log.lines(), input().isEmpty() ? QStringList() : incompressible);
    }
}

TEST_P(LzoSamples, AreGivenBackWithAWordWhenDamaged)
{
    bool compressed = false;
    const QByteArray whole = LZOCompress(input(), &compressed);
    if (!compressed)
        return;
    const auto length = static_cast<quint64>(input().size());
    for (const QByteArray &damaged :
         { whole.chopped(1), whole + 'x', withLength(length - 1, whole.mid(8)), whole.left(9) }) {
        const CapturedLog log;
        EXPECT_TRUE(isSameBuffer(LZOUncompress(damaged), damaged));
        EXPECT_EQ(log.lines(), failed);
    }
}

INSTANTIATE_TEST_SUITE_P(All, LzoSamples, testing::ValuesIn(allSamples()), sampleName);

TEST(LzoCodec, GivesAnEmptyBufferBackInSilence)
{
    const CapturedLog log;
    const QByteArray empty = ownEmptyBuffer();
    bool compressed = true;
    EXPECT_TRUE(isSameBuffer(LZOCompress(empty, &compressed), empty));
    EXPECT_FALSE(compressed);
    EXPECT_TRUE(isSameBuffer(LZOUncompress(empty), empty));
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST(LzoCodec, TakesAnEqualSizeForCompressed)
{
    // Random bytes with a repeat that grows until it pays for what the block adds.
    for (int repeat = 0; repeat < 40; ++repeat) {
        const QByteArray random = sampleOf(Content::Random, 200);
        const QByteArray input = random + random.left(repeat) + sampleOf(Content::Random, 30, 2);
        if (libraryBlock(input).size() != input.size())
            continue;
        bool compressed = false;
        const QByteArray framed = LZOCompress(input, &compressed);
        EXPECT_TRUE(compressed);
        EXPECT_EQ(framed.size(), input.size() + 8);
        EXPECT_EQ(LZOUncompress(framed), input);
        return;
    }
    FAIL() << "no input of an equal size found";
}

TEST(LzoCodec, LeavesShortInputsAlone)
{
    const CapturedLog log;
    for (int size = 0; size <= 8; ++size) {
        const QByteArray input(size, '\x01');
        EXPECT_TRUE(isSameBuffer(LZOUncompress(input), input)) << size;
    }
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST(LzoCodec, GivesAStoredLengthOfZeroBackInSilence)
{
    const CapturedLog log;
    const QByteArray framed = withLength(quint64(0), literalBlock("some text"));
    EXPECT_TRUE(isSameBuffer(LZOUncompress(framed), framed));
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST(LzoCodec, ReturnsTheStoredLengthFilledUpWithZeros)
{
    const CapturedLog log;
    EXPECT_EQ(LZOUncompress(withLength(quint64(9), literalBlock("some text"))), "some text");
    EXPECT_EQ(LZOUncompress(withLength(quint64(500), literalBlock("some text"))),
              "some text" + QByteArray(491, '\0'));
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST(LzoCodec, GivesALengthThatCannotBeBack)
{
    const QByteArray block = literalBlock("some text");
    const auto most = static_cast<quint64>(block.size()) * 255;
    EXPECT_EQ(LZOUncompress(withLength(most, block)).size(), static_cast<qsizetype>(most));
    for (const quint64 length : { most + 1, quint64(1) << 32, quint64(1) << 62, ~quint64(0) }) {
        const CapturedLog log;
        const QByteArray framed = withLength(length, block);
        EXPECT_TRUE(isSameBuffer(LZOUncompress(framed), framed)) << length;
        EXPECT_EQ(log.lines(), failed);
    }
}

TEST(LzoCodec, TakesTheDensestBlockThereIs)
{
    const QByteArray zeros = sampleOf(Content::Zeros, 10'000'000);
    bool compressed = false;
    const QByteArray framed = LZOCompress(zeros, &compressed);
    EXPECT_TRUE(compressed);
    EXPECT_GT(zeros.size() / framed.size(), 200);
    EXPECT_EQ(LZOUncompress(framed), zeros);
}

TEST(LzoCodec, ResultsHoldNoSpareMemory)
{
    bool compressed = false;
    const QByteArray framed = LZOCompress(sampleOf(Content::Zeros, 1'000'000), &compressed);
    EXPECT_LT(framed.capacity(), framed.size() + 64);
}
