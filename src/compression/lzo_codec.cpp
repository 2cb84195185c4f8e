#include "base/log.h"
#include "compression/codecs.h"
#include "compression/framing.h"

#include <lzo/lzo1x.h>

#include <algorithm>
#include <vector>

namespace vornic {

namespace {

using Prefix = quint64;
constexpr qsizetype prefixSize = sizeof(Prefix);

// Bytes of content that a byte of a block stands for at most: each zero byte that lengthens a match or a
// literal run adds 255, and the other bytes of such an instruction add less (LZO stream format).
constexpr Prefix maxExpansion = 255;

const unsigned char *bytesOf(const char *data)
{
    return reinterpret_cast<const unsigned char *>(data);
}

unsigned char *bytesOf(char *data)
{
    return reinterpret_cast<unsigned char *>(data);
}

bool lzoWorks()
{
    return lzo_init() == LZO_E_OK;
}

/// The worst case of LZO1X-1.
qsizetype compressorRoom(qsizetype inputSize)
{
    return inputSize + inputSize / 16 + 64 + 3;
}

/// False where the decoder fails; bytes of \a output beyond what the block holds become zero.
bool decodeBlock(const QByteArray &framed, QByteArray &output)
{
    auto produced = static_cast<lzo_uint>(output.size());
    const int result = lzo1x_decompress_safe(bytesOf(framed.constData() + prefixSize),
                                             static_cast<lzo_uint>(framed.size() - prefixSize),
                                             bytesOf(output.data()),
                                             &produced,
                                             nullptr);
    if (result != LZO_E_OK)
        return false;
    std::fill(output.begin() + static_cast<qsizetype>(produced), output.end(), '\0');
    return true;
}

} // namespace

QByteArray LZOCompress(const QByteArray &input, bool *compressed)
{
    *compressed = false;
    if (input.isEmpty() || !lzoWorks())
        return input;
    QByteArray framed(prefixSize + compressorRoom(input.size()), Qt::Uninitialized);
    storeLength(framed, static_cast<Prefix>(input.size()));
    std::vector<unsigned char> workArea(LZO1X_1_MEM_COMPRESS);
    const auto inputSize = static_cast<lzo_uint>(input.size());
    lzo_uint blockSize = 0;
    const int result = lzo1x_1_compress(bytesOf(input.constData()),
                                        inputSize,
                                        bytesOf(framed.data() + prefixSize),
                                        &blockSize,
                                        workArea.data());
    if (result != LZO_E_OK) {
        logMessage(QStringLiteral("Failed to compressed."));
        return input;
    }
    if (blockSize > inputSize) {
        logMessage(QStringLiteral("This block contains incompressible data."));
        return input;
    }
    *compressed = true;
    return cutTo(std::move(framed), prefixSize + static_cast<qsizetype>(blockSize));
}

QByteArray LZOUncompress(const QByteArray &input)
{
    if (!lzoWorks() || input.size() <= prefixSize)
        return input;
    const auto length = storedLength<Prefix>(input);
    if (length == 0)
        return input;
    if (length <= static_cast<Prefix>(input.size() - prefixSize) * maxExpansion) {
        QByteArray output(static_cast<qsizetype>(length), Qt::Uninitialized);
        if (decodeBlock(input, output))
            return output;
    }
    logMessage(QStringLiteral("Uncompress failed"));
    return input;
}

} // namespace vornic
