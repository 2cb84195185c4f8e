#pragma once

#include <QImage>
#include <QRect>
#include <QSize>

#include <cstdint>
#include <vector>

namespace vornic {
class BitmapImage;
}

namespace vornic::test {

/// Pictures for tests and shows, and the pixels of grabbed ones. Pure functions, for any thread.

/// A patch of one colour in the known picture.
struct KnownPatch {
    QRect rectangle;
    QRgb colour;
};

/// The patches of the known picture: seven upright bars that fill \a size from left to right, black, white,
/// grey (0x80), red, green, blue (each 0xff) and black again, each as wide as size.width() * i / 7 says.
[[nodiscard]] std::vector<KnownPatch> knownPatches(QSize size);
[[nodiscard]] QImage knownPicture(QSize size);

/// \a picture with the lowest bits of \a number in its top left, in squares that are white for 1, else black.
[[nodiscard]] QImage numbered(QImage picture, int number);
inline constexpr int numberBits = 16;
inline constexpr int numberSquare = 32; ///< the edge of each
/// What numbered() has written into a picture, which may have been lossily compressed.
[[nodiscard]] int numberIn(const QImage &picture);

/// Noise in full colour; the same for the same \a seed.
[[nodiscard]] QImage noisePicture(QSize size, std::uint32_t seed);

/// A page of small dark text on white, with a coloured picture here and there; the same for the same
/// \a seed. Needs a QGuiApplication.
[[nodiscard]] QImage textPage(QSize size, std::uint32_t seed);

/// Smooth colours that change slowly from pixel to pixel, as in a film.
[[nodiscard]] QImage smoothPicture(QSize size);

/// A copy of a grabbed picture with its unused bytes set to 0xff, so that pictures can be compared with ==.
[[nodiscard]] QImage pixelsOf(const BitmapImage &image);

} // namespace vornic::test
