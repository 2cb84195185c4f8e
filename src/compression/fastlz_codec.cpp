#include "base/log.h"
#include "compression/codecs.h"
#include "compression/framing.h"

#include <fastlz.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace vornic {

namespace {

using Prefix = quint64;
constexpr qsizetype prefixSize = sizeof(Prefix);
constexpr qsizetype minFramedSize = 17;
constexpr qsizetype maxSize = std::numeric_limits<int>::max(); // the library counts in int

// Bytes of content that a byte of a block stands for at most: each byte that lengthens a level 2 match adds
// up to 255, and the two bytes that begin and end such a match add 9 (from the library's decoder).
constexpr Prefix maxExpansion = 255;

// In the middle of a damaged match the library's decoder reads past its input: by two bytes at most where
// these are zero.
constexpr qsizetype readPastTheEnd = 2;

// The room that the library's documentation asks for.
qsizetype compressorRoom(qsizetype inputSize)
{
    return std::max<qsizetype>(inputSize + inputSize / 20 + 1, 66);
}

std::vector<char> paddedBlock(const QByteArray &framed)
{
    std::vector<char> block;
    block.reserve(static_cast<std::size_t>(framed.size() - prefixSize + readPastTheEnd));
    block.assign(framed.begin() + prefixSize, framed.end());
    block.insert(block.end(), readPastTheEnd, '\0');
    return block;
}

} // namespace

QByteArray fastLZCompress(const QByteArray &input)
{
    if (input.size() < minFramedSize)
        return input;
    const qsizetype room = compressorRoom(input.size());
    if (room <= maxSize) {
        QByteArray framed(prefixSize + room, Qt::Uninitialized);
        storeLength(framed, static_cast<Prefix>(input.size()));
        const int blockSize
            = fastlz_compress(input.constData(), static_cast<int>(input.size()), framed.data() + prefixSize);
        if (blockSize < input.size())
            return cutTo(std::move(framed), prefixSize + blockSize);
    }
    logMessage(QStringLiteral("Not compressed."));
    return input;
}

QByteArray fastLZUnCompress(const QByteArray &input)
{
    if (input.size() < minFramedSize)
        return input;
    const auto length = storedLength<Prefix>(input);
    const qsizetype blockSize = input.size() - prefixSize;
    if (length == 0 || length > static_cast<Prefix>(blockSize) * maxExpansion)
        return input;
    if (length > static_cast<Prefix>(maxSize) || blockSize > maxSize)
        return input;
    // The decoder's result is ignored: what a damaged block leaves unwritten stays zero.
    QByteArray output(static_cast<qsizetype>(length), '\0');
    const std::vector<char> block = paddedBlock(input);
    fastlz_decompress(
        block.data(), static_cast<int>(blockSize), output.data(), static_cast<int>(output.size()));
    return output;
}

} // namespace vornic
