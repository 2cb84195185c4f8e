#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>

#include <optional>
#include <vector>

namespace vornic {

/// The JPEG library behind four functions; each may be called from any thread, and from several at once.

/// The quality of spooled pictures. At 75 the luma of a page of small text comes back at 33 dB; 95 gives 43
/// dB for a fifth more time.
inline constexpr int jpegQuality = 95;

/// \a height rows of 32-bit pixels (B, G, R, unused in memory) as a baseline 4:2:0 JPEG with a restart marker
/// behind every 16 rows. Nothing when a side is below 1 or more than the library takes (65,500).
[[nodiscard]] std::optional<QByteArray>
jpegCompress(const uchar *pixels, int width, int height, qsizetype bytesPerLine);

/// The size that \a jpeg declares; empty when its header cannot be read, when the picture is progressive,
/// arithmetic coded or without colour, or when so few bytes cannot hold so large a picture. Reads only the
/// header.
[[nodiscard]] QSize jpegDeclaredSize(const QByteArray &jpeg);

/// Decodes all of \a jpeg into \a height rows at \a pixels, laid out as above, which must have the declared
/// size. False when any of it is damaged; the rows then hold undefined colours.
///
/// Chroma is repeated, not interpolated: the conversion to the movie's format averages it over the same 2 x 2
/// pixels again, so repeating is exact there, and faster.
[[nodiscard]] bool
jpegDecompress(const QByteArray &jpeg, uchar *pixels, int width, int height, qsizetype bytesPerLine);

/// The same for the entropy-coded bytes of \a bands of 16 rows each, of which the last has what remains of \a height.
/// \a header is that of a picture in such bands, of any height.
///
/// Each band is decoded as a picture without restart markers, because where there are any the library takes twice as
/// long to undo the entropy coding.
[[nodiscard]] bool jpegDecompressBands(const QByteArray &header,
                                       const std::vector<QByteArrayView> &bands,
                                       uchar *pixels,
                                       int width,
                                       int height,
                                       qsizetype bytesPerLine);

} // namespace vornic
