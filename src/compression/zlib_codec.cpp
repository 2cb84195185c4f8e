#include "compression/codecs.h"
#include "compression/framing.h"

#define ZLIB_CONST
#include <zlib.h>

#include <algorithm>
#include <limits>
#include <memory>

namespace vornic {

namespace {

// The interface these calls are written to; the library compares its first digit with its own.
constexpr auto zlibInterface = "1.2.11";
constexpr int zlibStreamSize = sizeof(z_stream);

constexpr int zlibWindowBits = 15;
constexpr int gzipWindowBits = 15 + 16;
constexpr int anyWindowBits = 15 + 32; // the header tells zlib from gzip
constexpr int memoryLevel = 8;
constexpr qsizetype deflateGrowth = 16384;

/// Moves one buffer through a zlib stream and gathers what comes out of it.
///
/// Made on the stack of a call, for that call. zlib counts what it is given in 32 bits, so larger buffers
/// are handed over in pieces.
class StreamPump
{
public:
    StreamPump(z_stream &stream, const QByteArray &input, qsizetype firstRoom, qsizetype growth)
        : m_stream(stream)
        , m_input(input)
        , m_growth(growth)
        , m_output(firstRoom, Qt::Uninitialized)
    {
    }

    /// True when the next run() hands over all of the input that is left.
    [[nodiscard]] bool handsOverTheRest() const { return m_input.size() - m_consumed <= maxPieceSize; }
    [[nodiscard]] bool hasMore() const { return m_stream.avail_out == 0 || m_consumed < m_input.size(); }

    /// One call of \a code, which is deflate or inflate.
    int run(int (*code)(z_stream *, int), int flush)
    {
        if (m_produced == m_output.size())
            m_output.resize(m_output.size() + m_growth); // takes memory by doubling, so this stays linear
        const uInt given = pieceOf(m_input.size() - m_consumed);
        const uInt room = pieceOf(m_output.size() - m_produced);
        m_stream.next_in = reinterpret_cast<const Bytef *>(m_input.constData() + m_consumed);
        m_stream.avail_in = given;
        m_stream.next_out = reinterpret_cast<Bytef *>(m_output.data() + m_produced);
        m_stream.avail_out = room;
        const int result = code(&m_stream, flush);
        m_consumed += given - m_stream.avail_in;
        m_produced += room - m_stream.avail_out;
        return result;
    }

    QByteArray takeOutput() { return cutTo(std::move(m_output), m_produced); }

private:
    static constexpr qsizetype maxPieceSize = std::numeric_limits<uInt>::max();
    static uInt pieceOf(qsizetype size) { return static_cast<uInt>(std::min(size, maxPieceSize)); }

    z_stream &m_stream;
    const QByteArray &m_input;
    const qsizetype m_growth;
    QByteArray m_output;
    qsizetype m_consumed = 0;
    qsizetype m_produced = 0;
};

using StreamEnd = std::unique_ptr<z_stream, int (*)(z_stream *)>;

std::optional<QByteArray> deflateBuffer(const QByteArray &input, int level, int windowBits)
{
    if (input.isEmpty())
        return input;
    z_stream stream = {};
    const int zlibLevel = level == 0 ? Z_BEST_SPEED : Z_BEST_COMPRESSION;
    if (deflateInit2_(&stream,
                      zlibLevel,
                      Z_DEFLATED,
                      windowBits,
                      memoryLevel,
                      Z_DEFAULT_STRATEGY,
                      zlibInterface,
                      zlibStreamSize)
        != Z_OK)
        return std::nullopt;
    const StreamEnd end(&stream, deflateEnd);
    StreamPump pump(stream, input, deflateGrowth, deflateGrowth);
    do {
        pump.run(deflate, pump.handsOverTheRest() ? Z_FINISH : Z_NO_FLUSH);
    } while (pump.hasMore());
    return pump.takeOutput();
}

std::optional<QByteArray> inflateBuffer(const QByteArray &input, int windowBits)
{
    if (input.isEmpty())
        return input;
    z_stream stream = {};
    if (inflateInit2_(&stream, windowBits, zlibInterface, zlibStreamSize) != Z_OK)
        return std::nullopt;
    StreamEnd end(&stream, inflateEnd);
    // The step of a one-byte input is 0, which is no endless loop: a call that can neither read nor write
    // is not Z_OK. Deflate expands 1032 times at most (a 258-byte match in two bits, as zlib's own
    // documentation says), so about 2100 steps are enough for any input.
    const qsizetype growth = input.size() / 2;
    StreamPump pump(stream, input, input.size() + growth, growth);
    int result = Z_OK;
    while (result == Z_OK)
        result = pump.run(inflate, Z_SYNC_FLUSH);
    if (result != Z_STREAM_END || inflateEnd(end.release()) != Z_OK)
        return std::nullopt;
    return pump.takeOutput();
}

} // namespace

std::optional<QByteArray> zlibDeflateWithLevel(const QByteArray &input, int level)
{
    return deflateBuffer(input, level, zlibWindowBits);
}

std::optional<QByteArray> zlibDeflate(const QByteArray &input)
{
    return zlibDeflateWithLevel(input, 0);
}

std::optional<QByteArray> zlibInflate(const QByteArray &input)
{
    return inflateBuffer(input, zlibWindowBits);
}

std::optional<QByteArray> gzipDeflateWithLevel(const QByteArray &input, int level)
{
    return deflateBuffer(input, level, gzipWindowBits);
}

std::optional<QByteArray> gzipDeflate(const QByteArray &input)
{
    return gzipDeflateWithLevel(input, 0);
}

std::optional<QByteArray> gzipInflate(const QByteArray &input)
{
    return inflateBuffer(input, anyWindowBits);
}

} // namespace vornic
