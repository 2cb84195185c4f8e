#include "capture/jpeg/jpeg_bands.h"

#include "display/bitmap_image.h"

#include <cstring>
#include <string_view>

namespace vornic {

namespace {

// Marker codes of ITU-T T.81, table B.1.
constexpr uchar markerPrefix = 0xFF;
constexpr uchar startOfImage = 0xD8;
constexpr uchar endOfImage = 0xD9;
constexpr uchar startOfFrameBaseline = 0xC0;
constexpr uchar startOfScan = 0xDA;
constexpr uchar firstRestart = 0xD0;
constexpr uchar lastRestart = 0xD7;

uchar byteAt(QByteArrayView bytes, qsizetype position)
{
    return static_cast<uchar>(bytes[position]);
}

int wordAt(QByteArrayView bytes, qsizetype position)
{
    return byteAt(bytes, position) << 8 | byteAt(bytes, position + 1);
}

/// Places in a JPEG picture, in bytes from its start; both -1 where it has no scan header.
struct HeaderMarks {
    qsizetype frame = -1;    ///< the baseline frame header, behind its marker; -1 for other codings
    qsizetype scanData = -1; ///< the first entropy-coded byte
};

HeaderMarks findHeaderMarks(QByteArrayView jpeg)
{
    HeaderMarks marks;
    if (jpeg.size() < 4 || byteAt(jpeg, 0) != markerPrefix || byteAt(jpeg, 1) != startOfImage)
        return marks;
    qsizetype position = 2;
    while (position + 4 <= jpeg.size() && byteAt(jpeg, position) == markerPrefix) {
        const uchar marker = byteAt(jpeg, position + 1);
        const qsizetype segment = position + 2;
        const qsizetype next = segment + wordAt(jpeg, segment);
        if (next > jpeg.size() || next < segment + 2)
            return {};
        if (marker == startOfFrameBaseline)
            marks.frame = segment;
        if (marker == startOfScan) {
            marks.scanData = next;
            return marks;
        }
        position = next;
    }
    return {};
}

/// The bands between restart markers up to the end of the image; empty when the markers are out of order, or
/// when anything follows the image.
std::vector<QByteArrayView> splitScan(QByteArrayView scan)
{
    std::vector<QByteArrayView> bands;
    qsizetype bandStart = 0;
    qsizetype position = 0;
    while (position + 1 < scan.size()) {
        const void *found = std::memchr(
            scan.data() + position, markerPrefix, static_cast<std::size_t>(scan.size() - position - 1));
        if (!found)
            break;
        position = static_cast<const char *>(found) - scan.data();
        const uchar code = byteAt(scan, position + 1);
        if (code == endOfImage) {
            bands.push_back(scan.sliced(bandStart, position - bandStart));
            return position + 2 == scan.size() ? bands : std::vector<QByteArrayView>();
        }
        if (code >= firstRestart && code <= lastRestart) {
            if (code != firstRestart + static_cast<uchar>(bands.size() % 8))
                return {};
            bands.push_back(scan.sliced(bandStart, position - bandStart));
            bandStart = position + 2;
        } else if (code != 0) {
            return {};
        }
        position += 2;
    }
    return {};
}

} // namespace

std::optional<JpegBands> JpegBands::split(const QByteArray &jpeg)
{
    const HeaderMarks marks = findHeaderMarks(jpeg);
    // Of a frame header: length 2, precision 1, height 2, width 2.
    if (marks.frame < 0 || marks.scanData < 0 || marks.frame + 7 > marks.scanData)
        return std::nullopt;
    JpegBands result;
    result.size = QSize(wordAt(jpeg, marks.frame + 5), wordAt(jpeg, marks.frame + 3));
    result.header = jpeg.left(marks.scanData);
    result.bands = splitScan(QByteArrayView(jpeg).sliced(marks.scanData));
    if (result.size.isEmpty()
        || result.bands.size() != static_cast<std::size_t>(bandCount(result.size.height())))
        return std::nullopt;
    return result;
}

std::vector<QByteArrayView> JpegBands::pieces() const
{
    static constexpr std::string_view restarts
        = "\xFF\xD0\xFF\xD1\xFF\xD2\xFF\xD3\xFF\xD4\xFF\xD5\xFF\xD6\xFF\xD7";
    static constexpr std::string_view end = "\xFF\xD9";
    static_assert(restarts.size() == std::size_t { 2 } * (lastRestart - firstRestart + 1));
    std::vector<QByteArrayView> pieces { header };
    pieces.reserve(1 + 2 * bands.size());
    for (std::size_t i = 0; i < bands.size(); ++i) {
        const bool isLast = i + 1 == bands.size();
        pieces.push_back(bands[i]);
        pieces.emplace_back(isLast ? end : restarts.substr(i % 8 * 2, 2));
    }
    return pieces;
}

QByteArray JpegBands::joined() const
{
    const std::vector<QByteArrayView> parts = pieces();
    qsizetype length = 0;
    for (const QByteArrayView part : parts)
        length += part.size();
    QByteArray jpeg;
    jpeg.reserve(length);
    for (const QByteArrayView part : parts)
        jpeg.append(part);
    return jpeg;
}

QByteArray jpegHeaderWithHeight(const QByteArray &header, int height)
{
    QByteArray result = header;
    const qsizetype frame = findHeaderMarks(header).frame;
    if (frame >= 0) {
        result[frame + 3] = static_cast<char>(height >> 8);
        result[frame + 4] = static_cast<char>(height & 0xFF);
    }
    return result;
}

bool isJpegBand(QByteArrayView bytes)
{
    qsizetype position = bytes.indexOf(static_cast<char>(markerPrefix));
    while (position >= 0 && position + 1 < bytes.size() && byteAt(bytes, position + 1) == 0)
        position = bytes.indexOf(static_cast<char>(markerPrefix), position + 2);
    return position < 0 && !bytes.isEmpty();
}

} // namespace vornic
