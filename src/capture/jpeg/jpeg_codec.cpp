#include "capture/jpeg/jpeg_codec.h"

#include "capture/jpeg/jpeg_bands.h"
#include "display/bitmap_image.h"

#include <jpeglib.h>

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <utility>
#include <vector>

namespace vornic {

namespace {

/// The library reports failure through a function that must not return: it jumps back to the caller, which
/// therefore keeps no C++ object between the mark and the jump.
struct ErrorManager {
    jpeg_error_mgr base;
    std::jmp_buf jump;
};

[[noreturn]] void leaveOnError(j_common_ptr info)
{
    auto *manager = reinterpret_cast<ErrorManager *>(info->err); // NOLINT: the library's way to derive
    std::longjmp(manager->jump, 1);
}

/// Damaged data is a warning to the library, which goes on with made-up colours; here it ends the picture.
void leaveOnWarning(j_common_ptr info, int level)
{
    if (level < 0)
        leaveOnError(info);
}

void ignoreMessage(j_common_ptr /*info*/)
{
}

void prepare(ErrorManager &manager)
{
    jpeg_std_error(&manager.base);
    manager.base.error_exit = leaveOnError;
    manager.base.emit_message = leaveOnWarning;
    manager.base.output_message = ignoreMessage;
}

/// Memory that the library writes to, kept by a thread for its next picture: fresh memory costs more to fault
/// in than to fill. Where it is too small, the library allocates more and \a bytes points there.
struct MemoryOutput {
    explicit MemoryOutput(std::vector<unsigned char> &kept)
        : bytes(kept.data())
        , size(kept.size())
        , m_kept(kept.data())
    {
    }
    ~MemoryOutput()
    {
        if (bytes != m_kept)
            std::free(bytes); // NOLINT: the library's malloc
    }
    MemoryOutput(const MemoryOutput &) = delete;
    MemoryOutput &operator=(const MemoryOutput &) = delete;

    unsigned char *bytes;
    unsigned long size;

private:
    const unsigned char *m_kept;
};

bool compressInto(MemoryOutput &output, const uchar *pixels, int width, int height, qsizetype bytesPerLine)
{
    jpeg_compress_struct info {};
    ErrorManager errors {};
    prepare(errors);
    info.err = &errors.base;
    if (setjmp(errors.jump) != 0) { // NOLINT: see ErrorManager
        jpeg_destroy_compress(&info);
        return false;
    }
    jpeg_create_compress(&info);
    jpeg_mem_dest(&info, &output.bytes, &output.size);
    info.image_width = static_cast<JDIMENSION>(width);
    info.image_height = static_cast<JDIMENSION>(height);
    info.input_components = 4;
    info.in_color_space = JCS_EXT_BGRX;
    jpeg_set_defaults(&info); // 4:2:0 is among them
    jpeg_set_quality(&info, jpegQuality, TRUE);
    info.restart_in_rows = 1;
    jpeg_start_compress(&info, TRUE);
    while (info.next_scanline < info.image_height) {
        constexpr JDIMENSION rowsAtOnce = 16;
        std::array<JSAMPROW, rowsAtOnce> rows {};
        const JDIMENSION count = std::min(rowsAtOnce, info.image_height - info.next_scanline);
        for (JDIMENSION i = 0; i < count; ++i)
            rows[i]
                = const_cast<uchar *>(pixels + static_cast<qsizetype>(info.next_scanline + i) * bytesPerLine);
        jpeg_write_scanlines(&info, rows.data(), count);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    return true;
}

/// The minimum of bytes that a unit of 16 x 16 pixels takes with the standard tables (ITU-T T.81, annex K.3):
/// four luma blocks of 2 + 4 bits and two chroma blocks of 2 + 2 bits.
constexpr qint64 minBytesPerUnit = 4;

bool isPlausible(const jpeg_decompress_struct &info, qsizetype bytes)
{
    const qint64 units = qint64 { (info.image_width + 15) / 16 } * ((info.image_height + 15) / 16);
    return info.progressive_mode == FALSE && info.arith_code == FALSE && info.num_components == 3
        && units * minBytesPerUnit <= bytes;
}

void readFrom(jpeg_decompress_struct &info, const QByteArray &jpeg)
{
    jpeg_mem_src(&info,
                 reinterpret_cast<const unsigned char *>(jpeg.constData()),
                 static_cast<unsigned long>(jpeg.size()));
}

bool readSize(const QByteArray &jpeg, int &width, int &height)
{
    jpeg_decompress_struct info {};
    ErrorManager errors {};
    prepare(errors);
    info.err = &errors.base;
    if (setjmp(errors.jump) != 0) { // NOLINT: see ErrorManager
        jpeg_destroy_decompress(&info);
        return false;
    }
    jpeg_create_decompress(&info);
    readFrom(info, jpeg);
    jpeg_read_header(&info, TRUE);
    const bool plausible = isPlausible(info, jpeg.size());
    width = static_cast<int>(info.image_width);
    height = static_cast<int>(info.image_height);
    jpeg_destroy_decompress(&info);
    return plausible;
}

/// A picture to decode, and where to.
struct Decoding {
    const uchar *bytes;
    std::size_t size;
    uchar *pixels;
    qsizetype bytesPerLine;
    int width;
    int height;
    bool hasRestarts;
};

/// Errors leave it through the library.
bool decompressOne(jpeg_decompress_struct &info, const Decoding &decoding)
{
    jpeg_mem_src(&info, decoding.bytes, static_cast<unsigned long>(decoding.size));
    jpeg_read_header(&info, TRUE);
    if (!isPlausible(info, static_cast<qsizetype>(decoding.size))
        || info.image_width != static_cast<JDIMENSION>(decoding.width)
        || info.image_height != static_cast<JDIMENSION>(decoding.height))
        return false;
    if (!decoding.hasRestarts)
        info.restart_interval = 0;
    info.out_color_space = JCS_EXT_BGRX;
    info.do_fancy_upsampling = FALSE;
    jpeg_start_decompress(&info);
    while (info.output_scanline < info.output_height) {
        // Two rows at once where there are two: the library then writes them without a copy.
        const bool two = info.output_scanline + 1 < info.output_height;
        JSAMPROW row = decoding.pixels + static_cast<qsizetype>(info.output_scanline) * decoding.bytesPerLine;
        std::array<JSAMPROW, 2> rows { row, two ? row + decoding.bytesPerLine : nullptr };
        jpeg_read_scanlines(&info, rows.data(), two ? 2 : 1);
    }
    jpeg_finish_decompress(&info);
    return true;
}

/// Decodes what \a next gives, until that gives false; false where anything is damaged. \a next is a plain function of
/// \a state, because the library's way out may leave nothing behind that has a destructor.
bool decompressAll(bool (*next)(void *state, Decoding &decoding), void *state)
{
    jpeg_decompress_struct info {};
    ErrorManager errors {};
    prepare(errors);
    info.err = &errors.base;
    if (setjmp(errors.jump) != 0) { // NOLINT: see ErrorManager
        jpeg_destroy_decompress(&info);
        return false;
    }
    jpeg_create_decompress(&info);
    bool good = true;
    Decoding decoding {};
    while (good && next(state, decoding))
        good = decompressOne(info, decoding);
    jpeg_destroy_decompress(&info);
    return good;
}

/// Bands of a picture, which become pictures one after the other in the same memory.
///
/// The library undoes the entropy coding of a unit fast only while so many bytes follow as six blocks may take: that
/// many stand behind the end of each picture.
class BandPictures
{
public:
    BandPictures(const QByteArray &header, const std::vector<QByteArrayView> &bands, const Decoding &all)
        : m_header(header)
        , m_bands(bands)
        , m_all(all)
    {
        qsizetype longest = 0;
        for (const QByteArrayView band : bands)
            longest = std::max(longest, band.size());
        m_bytes.resize(
            std::max(m_bytes.size(), static_cast<std::size_t>(header.size() + longest) + end.size() + room));
    }

    bool next(Decoding &decoding)
    {
        if (m_next == m_bands.size())
            return false;
        const QByteArrayView band = m_bands[m_next];
        const int firstRow = static_cast<int>(m_next) * BitmapImage::bandHeight;
        ++m_next;
        decoding = m_all;
        decoding.height = std::min(BitmapImage::bandHeight, m_all.height - firstRow);
        decoding.pixels = m_all.pixels + firstRow * m_all.bytesPerLine;
        const QByteArray header = jpegHeaderWithHeight(m_header, decoding.height);
        auto to = std::copy(header.begin(), header.end(), m_bytes.begin());
        to = std::copy(band.begin(), band.end(), to);
        to = std::copy(end.begin(), end.end(), to);
        std::fill_n(to, room, uchar { 0 });
        decoding.bytes = m_bytes.data();
        decoding.size = static_cast<std::size_t>(to - m_bytes.begin()) + room;
        return true;
    }

private:
    static constexpr std::array<uchar, 2> end { 0xFF, 0xD9 };
    static constexpr std::size_t room = std::size_t { 6 } * 512;

    /// Kept by a thread for its next pictures.
    [[nodiscard]] static std::vector<uchar> &keptBytes()
    {
        static thread_local std::vector<uchar> kept;
        return kept;
    }

    const QByteArray &m_header;
    const std::vector<QByteArrayView> &m_bands;
    std::vector<uchar> &m_bytes = keptBytes();
    Decoding m_all;
    std::size_t m_next = 0;
};

} // namespace

std::optional<QByteArray> jpegCompress(const uchar *pixels, int width, int height, qsizetype bytesPerLine)
{
    if (width < 1 || height < 1)
        return std::nullopt;
    // A byte a pixel is what noise takes.
    constexpr std::size_t headerRoom = 4096;
    static thread_local std::vector<unsigned char> kept;
    kept.resize(std::max(kept.size(),
                         static_cast<std::size_t>(width) * static_cast<std::size_t>(height) + headerRoom));
    MemoryOutput output(kept);
    if (!compressInto(output, pixels, width, height, bytesPerLine))
        return std::nullopt;
    return QByteArray(reinterpret_cast<const char *>(output.bytes), static_cast<qsizetype>(output.size));
}

QSize jpegDeclaredSize(const QByteArray &jpeg)
{
    int width = 0;
    int height = 0;
    return readSize(jpeg, width, height) ? QSize(width, height) : QSize();
}

bool jpegDecompress(const QByteArray &jpeg, uchar *pixels, int width, int height, qsizetype bytesPerLine)
{
    struct State {
        Decoding decoding {};
        bool isGiven = false;
    } state;
    state.decoding.bytes = reinterpret_cast<const uchar *>(jpeg.constData());
    state.decoding.size = static_cast<std::size_t>(jpeg.size());
    state.decoding.pixels = pixels;
    state.decoding.bytesPerLine = bytesPerLine;
    state.decoding.width = width;
    state.decoding.height = height;
    state.decoding.hasRestarts = true;
    const auto once = [](void *opaque, Decoding &decoding) {
        auto *given = static_cast<State *>(opaque);
        decoding = given->decoding;
        return !std::exchange(given->isGiven, true);
    };
    return decompressAll(once, &state);
}

bool jpegDecompressBands(const QByteArray &header,
                         const std::vector<QByteArrayView> &bands,
                         uchar *pixels,
                         int width,
                         int height,
                         qsizetype bytesPerLine)
{
    BandPictures pictures(header, bands, { nullptr, 0, pixels, bytesPerLine, width, height, false });
    const auto next = [](void *opaque, Decoding &decoding) {
        return static_cast<BandPictures *>(opaque)->next(decoding);
    };
    return decompressAll(next, &pictures);
}

} // namespace vornic
