#include "base/assertion.h"
#include "base/log.h"
#include "compression/codecs.h"
#include "compression/framing.h"

#include <QByteArrayView>

#include <lz4.h>
#include <lz4hc.h>

#include <limits>

namespace vornic {

namespace {

using Prefix = quint32;
constexpr qsizetype prefixSize = sizeof(Prefix);

constexpr quint64 minMatchLength = 4;

/// Walks over the sequences of an LZ4 block.
///
/// Made on the stack of a call, for that call. Once it has run out of bytes it reads zeros and is not ok().
class BlockReader
{
public:
    explicit BlockReader(QByteArrayView bytes)
        : m_bytes(bytes)
    {
    }

    [[nodiscard]] bool ok() const { return m_ok; }
    [[nodiscard]] qsizetype position() const { return m_position; }

    quint8 byte()
    {
        m_ok = m_ok && m_position < m_bytes.size();
        return m_ok ? static_cast<quint8>(m_bytes[m_position++]) : quint8(0);
    }

    /// A length whose first four bits stood in the token.
    quint64 length(int fromToken)
    {
        auto sum = static_cast<quint64>(fromToken);
        if (fromToken != 15)
            return sum;
        quint8 more = 0;
        do {
            more = byte();
            sum += more;
        } while (more == 255);
        return sum;
    }

    void skip(quint64 count)
    {
        m_ok = m_ok && count <= static_cast<quint64>(m_bytes.size() - m_position);
        if (m_ok)
            m_position += static_cast<qsizetype>(count);
    }

private:
    QByteArrayView m_bytes;
    qsizetype m_position = 0;
    bool m_ok = true;
};

/// The size of the block at the head of \a bytes that holds exactly \a length bytes (not 0), if there is one.
///
/// The bounds-checked decoder, which does all the other checks, wants the block's own size, where the stored
/// form gives only that of its content. A length that the bytes do not expand to (255 times is the most: each
/// byte that lengthens a match adds up to 255) is thus refused before memory is taken for it.
std::optional<qsizetype> sizeOfBlock(QByteArrayView bytes, quint64 length)
{
    BlockReader reader(bytes);
    quint64 produced = 0;
    for (;;) {
        const quint8 token = reader.byte();
        const quint64 literals = reader.length(token >> 4);
        reader.skip(literals);
        produced += literals;
        if (!reader.ok() || produced > length)
            return std::nullopt;
        if (produced == length)
            return reader.position();

        const quint8 distanceLow = reader.byte();
        const quint8 distanceHigh = reader.byte();
        // A distance of 0 would copy undefined bytes; the decoder does not refuse it.
        if (distanceLow == 0 && distanceHigh == 0)
            return std::nullopt;
        produced += reader.length(token & 15) + minMatchLength;
    }
}

int compressBlock(const QByteArray &input, char *block, int room, int level)
{
    const int size = static_cast<int>(input.size());
    if (level == 0)
        return LZ4_compress_default(input.constData(), block, size, room);
    return LZ4_compress_HC(input.constData(), block, size, room, LZ4HC_CLEVEL_DEFAULT);
}

} // namespace

std::optional<QByteArray> lz4CompressWithLevel(const QByteArray &input, int level)
{
    if (level != 0 && level != 1) {
        reportAssertionFailure({ QStringLiteral("lz4CompressWithLevel:"),
                                 QStringLiteral("NSData+Compression"),
                                 268,
                                 QStringLiteral("Invalid Compression Level") });
        return std::nullopt;
    }
    if (input.size() > LZ4_MAX_INPUT_SIZE)
        return std::nullopt;
    const int room = LZ4_compressBound(static_cast<int>(input.size()));
    QByteArray framed(prefixSize + room, Qt::Uninitialized);
    storeLength(framed, static_cast<Prefix>(input.size()));
    const int blockSize = compressBlock(input, framed.data() + prefixSize, room, level);
    // 0 is an error: even an empty input has a block of one byte.
    if (blockSize <= 0)
        return std::nullopt;
    return cutTo(std::move(framed), prefixSize + blockSize);
}

std::optional<QByteArray> lz4Compress(const QByteArray &input)
{
    return lz4CompressWithLevel(input, 0);
}

std::optional<QByteArray> lz4UnCompress(const QByteArray &input)
{
    const Prefix length = input.size() < prefixSize ? 0 : storedLength<Prefix>(input);
    if (length == 0) {
        logMessage(QStringLiteral("Error compressed data."));
        return std::nullopt;
    }
    const QByteArrayView bytes = QByteArrayView(input).sliced(prefixSize);
    const std::optional<qsizetype> blockSize = sizeOfBlock(bytes, length);
    constexpr int maxSize = std::numeric_limits<int>::max();
    if (!blockSize || *blockSize > maxSize || length > Prefix(maxSize))
        return std::nullopt;
    const int wanted = static_cast<int>(length);
    QByteArray output(wanted, Qt::Uninitialized);
    if (LZ4_decompress_safe(bytes.data(), output.data(), static_cast<int>(*blockSize), wanted) != wanted)
        return std::nullopt;
    return output;
}

} // namespace vornic
