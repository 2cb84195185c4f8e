// Feeds damaged bytes to every decompressor: none may crash, hang, read or write where it must not, or give
// a result that its family does not allow.
//
//   fuzz_codecs [inputs per family [seed]]
//
// Built with VORNIC_LIBFUZZER, libFuzzer makes the inputs instead.

#include "base/log.h"
#include "codec_samples.h"
#include "compression/codecs.h"
#include "support/fuzz_run.h"

#define LZ4_DISABLE_DEPRECATE_WARNINGS
#include <lz4.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <vector>

using namespace vornic;
using namespace vornic::test;

namespace {

void require(bool holds, const char *what, const QByteArray &data)
{
    if (holds)
        return;
    std::fprintf(stderr, "%s\n%s\n", what, data.toHex().constData());
    std::abort();
}

template<typename Length>
Length lengthOf(const QByteArray &framed)
{
    Length length = 0;
    std::memcpy(&length, framed.constData(), sizeof length);
    return length;
}

bool isSameBuffer(const QByteArray &left, const QByteArray &right)
{
    return left.constData() == right.constData() && left.size() == right.size();
}

/// LZ4_decompress_fast with enough zeros behind the block that it stays in its buffers. Nothing where it
/// fails, reads past the block, or copies what was in memory before.
std::optional<QByteArray> decompressFast(const QByteArray &framed)
{
    const auto length = static_cast<int>(lengthOf<quint32>(framed));
    const QByteArray block = framed.mid(4) + QByteArray(length + 64, '\0');
    QByteArray output(length, '\0');
    const int read = LZ4_decompress_fast(block.constData(), output.data(), length);
    if (read < 0 || read > framed.size() - 4)
        return std::nullopt;
    QByteArray again(length, '\x55');
    LZ4_decompress_fast(block.constData(), again.data(), length);
    return again == output ? std::optional(output) : std::nullopt;
}

void fuzzLz4(const QByteArray &data)
{
    const auto output = lz4UnCompress(data);
    const quint32 length = data.size() < 4 ? 0 : lengthOf<quint32>(data);
    if (length == 0 || length > quint64(data.size()) * 255)
        require(!output, "LZ4 takes a length that cannot be", data);
    else
        require(output == decompressFast(data), "LZ4 differs from the fast decoder", data);
}

void fuzzFastLz(const QByteArray &data)
{
    const QByteArray output = fastLZUnCompress(data);
    const bool decoded = !isSameBuffer(output, data);
    const bool framed = data.size() >= 17;
    const quint64 length = framed ? lengthOf<quint64>(data) : 0;
    require(decoded == (length != 0 && length <= quint64(data.size() - 8) * 255), "FastLZ by length", data);
    require(!decoded || quint64(output.size()) == length, "FastLZ has another length", data);
    require(!decoded || fastLZUnCompress(data) == output, "FastLZ reads what it was not given", data);
}

void fuzzLzo(const QByteArray &data)
{
    const QByteArray output = LZOUncompress(data);
    const bool decoded = !isSameBuffer(output, data);
    require(!decoded || quint64(output.size()) == lengthOf<quint64>(data), "LZO has another length", data);
    require(!decoded || LZOUncompress(data) == output, "LZO reads what it was not given", data);
}

/// \a bytes end where their memory ends, so that the address sanitizer sees who reads on.
void fuzzOne(std::span<const char> bytes)
{
    const auto data = bytes.empty()
        ? QByteArray()
        : QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
    const auto fromZlib = zlibInflate(data);
    require(!fromZlib || data.isEmpty() || gzipInflate(data) == fromZlib, "gzip differs from zlib", data);
    const auto fromGzip = gzipInflate(data);
    require(!fromGzip || fromGzip->size() <= data.size() * 1032, "gzip expands too far", data);
    const auto fromSnappy = snappyUnCompress(data);
    require(!fromSnappy || fromSnappy->size() <= data.size() * 64 / 3, "Snappy expands too far", data);
    fuzzLz4(data);
    fuzzFastLz(data);
    fuzzLzo(data);
}

} // namespace

#ifdef VORNIC_LIBFUZZER

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    setLogSink([](const QString &) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *bytes, std::size_t size)
{
    fuzzOne({ reinterpret_cast<const char *>(bytes), size });
    return 0;
}

#else

namespace {

/// Makes the inputs.
class Generator
{
public:
    explicit Generator(FuzzRandom &random)
        : m_random(random)
    {
    }

    /// Under \a limit, small numbers more often than large ones.
    qsizetype smallNumber(qsizetype limit) { return below(1 + below(limit)); }

    QByteArray content()
    {
        static constexpr Content contents[]
            = { Content::Zeros, Content::Random, Content::Text, Content::Pattern };
        // Now and then long enough for the second level of FastLZ and for far matches.
        const qsizetype size = below(10) == 0 ? 65536 + smallNumber(20000) : smallNumber(3000);
        const Content kind = contents[below(4)];
        return sampleOf(kind, size, m_random.next());
    }

    /// Random bytes, mostly behind a length that the length-prefixed families take seriously.
    QByteArray randomBytes()
    {
        const qsizetype size = smallNumber(600);
        const QByteArray bytes = sampleOf(Content::Random, size, m_random.next());
        const quint64 length = 1 + quint64(smallNumber(8000));
        const QByteArray prefix(reinterpret_cast<const char *>(&length), sizeof length);
        switch (below(4)) {
        case 0:
            return bytes;
        case 1:
            return prefix.left(4) + bytes;
        default:
            return prefix + bytes;
        }
    }

    /// \a valid with one to four changes.
    QByteArray damaged(QByteArray valid)
    {
        for (int changes = 1 + below(4); changes > 0; --changes)
            change(valid);
        return valid;
    }

private:
    int below(qsizetype limit) { return m_random.below(limit); }
    char anyByte()
    {
        static constexpr std::array<char, 6> extremes = { '\0', '\x01', '\x1f', '\x7f', '\xfe', '\xff' };
        return below(2) == 0 ? extremes[static_cast<std::size_t>(below(std::ssize(extremes)))]
                             : static_cast<char>(below(256));
    }

    void change(QByteArray &bytes)
    {
        if (bytes.isEmpty()) {
            bytes.append(anyByte());
            return;
        }
        const qsizetype place = below(bytes.size());
        switch (below(8)) {
        case 0:
            bytes.truncate(place);
            break;
        case 1:
            bytes.append(sampleOf(Content::Random, 1 + place % 100, 1 + unsigned(place)));
            break;
        case 2: // one of the bytes that hold the length
            bytes[place % 8] = anyByte();
            break;
        case 3:
            changeLength(bytes);
            break;
        case 4:
            bytes.insert(place, QByteArray(1 + place % 300, anyByte()));
            break;
        case 5:
            bytes.remove(place, 1 + place % 20);
            break;
        default: {
            char &byte = bytes.data()[place];
            byte = below(2) == 0 ? anyByte() : static_cast<char>(byte ^ (1 << below(8)));
        }
        }
    }

    /// A little more or less, where the length is the first four bytes or eight.
    void changeLength(QByteArray &bytes)
    {
        if (bytes.size() < 4)
            return;
        auto length = lengthOf<quint32>(bytes);
        length += static_cast<quint32>(below(2) == 0 ? below(70) - 35 : smallNumber(100000));
        std::memcpy(bytes.data(), &length, sizeof length);
    }

    FuzzRandom &m_random;
};

struct Family {
    const char *name;
    QByteArray (*compress)(const QByteArray &);
};

constexpr Family families[] = {
    { "zlib", [](const QByteArray &input) { return zlibDeflate(input).value(); } },
    { "gzip", [](const QByteArray &input) { return gzipDeflateWithLevel(input, 1).value(); } },
    { "Snappy", [](const QByteArray &input) { return snappyCompress(input).value(); } },
    { "LZ4", [](const QByteArray &input) { return lz4Compress(input).value(); } },
    { "FastLZ", [](const QByteArray &input) { return fastLZCompress(input); } },
    { "LZO",
      [](const QByteArray &input) {
          bool compressed = false;
          return LZOCompress(input, &compressed);
      } },
};

void fuzzExactly(const QByteArray &data)
{
    fuzzOne(std::vector<char>(data.begin(), data.end()));
}

void fuzzFamily(const Family &family, FuzzRun &run)
{
    constexpr int variants = 40; // of each valid stream
    Generator generator(run.random());
    QByteArray valid;
    run.feedAll(family.name, [&](int number) {
        if (number % variants == 0) {
            valid = family.compress(generator.content());
            fuzzExactly(valid);
        }
        fuzzExactly(number % 5 == 0 ? generator.randomBytes() : generator.damaged(valid));
    });
}

} // namespace

int main(int argc, char **argv)
{
    FuzzRun run(argc, argv, 100'000);
    for (const Family &family : families)
        fuzzFamily(family, run);
    return 0;
}

#endif
