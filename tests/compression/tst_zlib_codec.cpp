#include "codec_test_support.h"
#include "compression/codecs.h"

#include <QProcess>
#include <QStandardPaths>

#define ZLIB_CONST
#include <zlib.h>

using namespace vornic;
using namespace vornic::test;

namespace {

const unsigned char *bytesOf(const QByteArray &buffer)
{
    return reinterpret_cast<const unsigned char *>(buffer.constData());
}

/// What zlib itself makes of \a input at one of its own levels.
QByteArray libraryDeflate(const QByteArray &input, int zlibLevel)
{
    auto size = compressBound(static_cast<uLong>(input.size()));
    QByteArray output(static_cast<qsizetype>(size), '\0');
    compress2(reinterpret_cast<Bytef *>(output.data()),
              &size,
              bytesOf(input),
              static_cast<uLong>(input.size()),
              zlibLevel);
    return output.left(static_cast<qsizetype>(size));
}

QByteArray throughTool(const QStringList &arguments, const QByteArray &input)
{
    QProcess tool;
    tool.start(QStringLiteral("gzip"), arguments);
    tool.write(input);
    tool.closeWriteChannel();
    tool.waitForFinished();
    return tool.exitCode() == 0 ? tool.readAllStandardOutput() : QByteArray("gzip failed");
}

quint32 trailerWord(const QByteArray &member, qsizetype fromEnd)
{
    return lengthOf<quint32>(member.right(fromEnd));
}

using Codec = std::optional<QByteArray> (*)(const QByteArray &);

} // namespace

class ZlibSamples : public SampleTest
{
};

TEST_P(ZlibSamples, ComeBackThroughZlib)
{
    for (const int level : { 0, 1 }) {
        const auto deflated = zlibDeflateWithLevel(input(), level);
        ASSERT_TRUE(deflated);
        EXPECT_EQ(zlibInflate(*deflated), input());
        EXPECT_EQ(gzipInflate(*deflated), input());
    }
}

TEST_P(ZlibSamples, ComeBackThroughGzip)
{
    for (const int level : { 0, 1 }) {
        const auto deflated = gzipDeflateWithLevel(input(), level);
        ASSERT_TRUE(deflated);
        EXPECT_EQ(gzipInflate(*deflated), input());
    }
}

TEST_P(ZlibSamples, AreDeflatedAsTheLibraryDoesAtItsLevels1And9)
{
    if (input().isEmpty())
        return;
    EXPECT_EQ(zlibDeflateWithLevel(input(), 0), libraryDeflate(input(), 1));
    EXPECT_EQ(zlibDeflateWithLevel(input(), 1), libraryDeflate(input(), 9));
}

INSTANTIATE_TEST_SUITE_P(All, ZlibSamples, testing::ValuesIn(allSamples()), sampleName);

TEST(ZlibCodec, GivesAnEmptyBufferBack)
{
    const QByteArray empty = ownEmptyBuffer();
    for (const Codec codec : { zlibDeflate, zlibInflate, gzipDeflate, gzipInflate }) {
        const auto result = codec(empty);
        ASSERT_TRUE(result);
        EXPECT_TRUE(isSameBuffer(*result, empty));
    }
    EXPECT_TRUE(isSameBuffer(*zlibDeflateWithLevel(empty, 9), empty));
    EXPECT_TRUE(isSameBuffer(*gzipDeflateWithLevel(empty, 9), empty));
}

TEST(ZlibCodec, LevelIsASwitch)
{
    const QByteArray text = sampleOf(Content::Text, 100000);
    EXPECT_EQ(zlibDeflateWithLevel(text, 5), zlibDeflateWithLevel(text, 9));
    EXPECT_EQ(zlibDeflateWithLevel(text, -1), zlibDeflateWithLevel(text, 9));
    EXPECT_EQ(zlibDeflateWithLevel(text, 1000), zlibDeflateWithLevel(text, 9));
    EXPECT_EQ(zlibDeflate(text), zlibDeflateWithLevel(text, 0));
    EXPECT_NE(zlibDeflate(text), zlibDeflateWithLevel(text, 1));
    EXPECT_EQ(gzipDeflateWithLevel(text, 5), gzipDeflateWithLevel(text, 9));
    EXPECT_EQ(gzipDeflateWithLevel(text, -1), gzipDeflateWithLevel(text, 9));
    EXPECT_EQ(gzipDeflate(text), gzipDeflateWithLevel(text, 0));
    EXPECT_NE(gzipDeflate(text), gzipDeflateWithLevel(text, 1));
}

TEST(ZlibCodec, WritesPlainZlibStreams)
{
    const QByteArray text = sampleOf(Content::Text, 5000);
    EXPECT_EQ(zlibDeflateWithLevel(text, 0)->left(2).toHex(), "7801");
    EXPECT_EQ(zlibDeflateWithLevel(text, 1)->left(2).toHex(), "78da");
    const QByteArray checksum = zlibDeflate(text)->right(4);
    const auto expected = static_cast<quint32>(adler32(1, bytesOf(text), static_cast<uInt>(text.size())));
    EXPECT_EQ(checksum.toHex().toUInt(nullptr, 16), expected);
}

TEST(ZlibCodec, WritesPlainGzipMembers)
{
    const QByteArray text = sampleOf(Content::Text, 5000);
    const QByteArray fast = *gzipDeflateWithLevel(text, 0);
    const QByteArray best = *gzipDeflateWithLevel(text, 1);
    // Method deflate, no flags, no time, extra flags by level (4 fastest, 2 best), made on Unix.
    EXPECT_EQ(fast.left(10).toHex(), "1f8b0800000000000403");
    EXPECT_EQ(best.left(10).toHex(), "1f8b0800000000000203");
    EXPECT_EQ(trailerWord(fast, 8), crc32(0, bytesOf(text), static_cast<uInt>(text.size())));
    EXPECT_EQ(trailerWord(fast, 4), 5000U);
}

TEST(ZlibCodec, UnderstandsAndIsUnderstoodByTheGzipTool)
{
    ASSERT_FALSE(QStandardPaths::findExecutable(QStringLiteral("gzip")).isEmpty());
    const QByteArray text = sampleOf(Content::Text, 100000);
    EXPECT_EQ(throughTool({ QStringLiteral("-dc") }, *gzipDeflate(text)), text);
    EXPECT_EQ(throughTool({ QStringLiteral("-dc") }, *gzipDeflateWithLevel(text, 1)), text);
    EXPECT_EQ(gzipInflate(throughTool({ QStringLiteral("-c") }, text)), text);
}

TEST(ZlibCodec, InflatesGzipOnlyWhereAskedTo)
{
    const QByteArray text = sampleOf(Content::Text, 1000);
    EXPECT_EQ(gzipInflate(*zlibDeflate(text)), text);
    EXPECT_EQ(gzipInflate(*gzipDeflate(text)), text);
    EXPECT_FALSE(zlibInflate(*gzipDeflate(text)));
}

TEST(ZlibCodec, RefusesEveryStreamThatDoesNotEnd)
{
    const QByteArray text = sampleOf(Content::Text, 300);
    const QByteArray zlibStream = *zlibDeflate(text);
    const QByteArray gzipMember = *gzipDeflate(text);
    for (qsizetype size = 1; size < zlibStream.size(); ++size)
        EXPECT_FALSE(zlibInflate(zlibStream.left(size))) << size;
    for (qsizetype size = 1; size < gzipMember.size(); ++size)
        EXPECT_FALSE(gzipInflate(gzipMember.left(size))) << size;
}

TEST(ZlibCodec, RefusesAWrongChecksum)
{
    QByteArray zlibStream = *zlibDeflate(sampleOf(Content::Text, 300));
    zlibStream.back() = static_cast<char>(zlibStream.back() ^ 1);
    EXPECT_FALSE(zlibInflate(zlibStream));
    QByteArray gzipMember = *gzipDeflate(sampleOf(Content::Text, 300));
    gzipMember[gzipMember.size() - 8] = static_cast<char>(gzipMember.at(gzipMember.size() - 8) ^ 1);
    EXPECT_FALSE(gzipInflate(gzipMember));
}

TEST(ZlibCodec, RefusesAStreamThatWantsADictionary)
{
    EXPECT_FALSE(zlibInflate(QByteArray::fromHex("78bb00000001") + QByteArray(20, '\0')));
}

TEST(ZlibCodec, RefusesEveryTinyInput)
{
    for (int first = 0; first < 256; ++first) {
        QByteArray tiny(1, static_cast<char>(first));
        EXPECT_FALSE(zlibInflate(tiny));
        EXPECT_FALSE(gzipInflate(tiny));
        for (int second = 0; second < 256; ++second) {
            const QByteArray two = tiny + static_cast<char>(second);
            EXPECT_FALSE(zlibInflate(two));
            EXPECT_FALSE(gzipInflate(two));
        }
    }
}

TEST(ZlibCodec, IgnoresWhatFollowsTheStream)
{
    const QByteArray text = sampleOf(Content::Text, 1000);
    EXPECT_EQ(zlibInflate(*zlibDeflate(text) + "more"), text);
    EXPECT_EQ(gzipInflate(*gzipDeflate(text) + "more"), text);
    EXPECT_EQ(gzipInflate(*gzipDeflate(text) + *gzipDeflate("second member")), text);
}

// Output sizes on both sides of, and on, the steps in which the output buffer grows.
TEST(ZlibCodec, FillsItsOutputBufferToTheLastByte)
{
    const QByteArray random = sampleOf(Content::Random, 3 * 16384);
    bool exact = false;
    for (qsizetype size = 2 * 16384 - 40; size <= 2 * 16384; ++size) {
        const auto deflated = zlibDeflate(random.left(size));
        ASSERT_TRUE(deflated);
        exact = exact || deflated->size() == 2 * 16384;
        EXPECT_EQ(zlibInflate(*deflated), random.left(size));
    }
    EXPECT_TRUE(exact);
}

TEST(ZlibCodec, ExpandsAsFarAsTheFormatGoes)
{
    const QByteArray zeros = sampleOf(Content::Zeros, 64 * 1024 * 1024);
    const QByteArray deflated = *zlibDeflateWithLevel(zeros, 1);
    EXPECT_GT(zeros.size() / deflated.size(), 1000);
    EXPECT_EQ(zlibInflate(deflated), zeros);
    EXPECT_EQ(gzipInflate(*gzipDeflateWithLevel(zeros, 1)), zeros);
}

TEST(ZlibCodec, ResultsHoldNoSpareMemory)
{
    const QByteArray deflated = *zlibDeflate(sampleOf(Content::Random, 20000));
    EXPECT_LT(deflated.capacity(), deflated.size() + 64);
    const QByteArray inflated = *zlibInflate(*zlibDeflate(sampleOf(Content::Zeros, 100000)));
    EXPECT_LT(inflated.capacity(), inflated.size() + 64);
}

TEST(ZlibCodec, LogsNothing)
{
    const CapturedLog log;
    EXPECT_FALSE(zlibInflate("no stream"));
    EXPECT_FALSE(gzipInflate("no stream"));
    EXPECT_TRUE(log.lines().isEmpty());
}
