#include "compression/codecs.h"
#include "compression/framing.h"

#include <snappy-c.h>

#include <limits>

namespace vornic {

namespace {

// How many bytes a block of this size expands to at most: its densest element is a copy of 64 bytes in 3 (tag
// and 16-bit distance, Snappy format description, section 2.2.2), and at least one byte holds the length.
std::size_t maxContentSize(std::size_t blockSize)
{
    return (blockSize - 1) * 64 / 3;
}

} // namespace

std::optional<QByteArray> snappyCompress(const QByteArray &input)
{
    const auto inputSize = static_cast<std::size_t>(input.size());
    // The library writes only the low 32 bits of a longer length and calls that a success.
    if (inputSize > std::numeric_limits<quint32>::max())
        return std::nullopt;
    std::size_t blockSize = snappy_max_compressed_length(inputSize);
    QByteArray block(static_cast<qsizetype>(blockSize), Qt::Uninitialized);
    if (snappy_compress(input.constData(), inputSize, block.data(), &blockSize) != SNAPPY_OK)
        return std::nullopt;
    return cutTo(std::move(block), static_cast<qsizetype>(blockSize));
}

std::optional<QByteArray> snappyUnCompress(const QByteArray &input)
{
    const auto blockSize = static_cast<std::size_t>(input.size());
    std::size_t length = 0;
    if (snappy_uncompressed_length(input.constData(), blockSize, &length) != SNAPPY_OK
        || length > maxContentSize(blockSize))
        return std::nullopt;
    QByteArray output(static_cast<qsizetype>(length), Qt::Uninitialized);
    if (snappy_uncompress(input.constData(), blockSize, output.data(), &length) != SNAPPY_OK)
        return std::nullopt;
    return cutTo(std::move(output), static_cast<qsizetype>(length));
}

} // namespace vornic
