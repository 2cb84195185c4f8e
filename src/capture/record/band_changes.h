#pragma once

#include "capture/jpeg/jpeg_picture.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QSize>

#include <memory>
#include <optional>
#include <vector>

namespace vornic {

struct JpegBands;

/// The bands in which a picture differs from the one before, as a record holds them.
///
/// In bytes, with the highest first: width and height in 2 each, the number of bands in 2; for each of these its
/// number from the top in 2 and its length in 4, ascending; then the bands, one behind the other. A plain value;
/// \a bands look into the bytes that it was read from.
struct BandChanges {
    QSize size; ///< of the picture, in pixels
    std::vector<JpegPicture::Replacement> bands;

    /// Nothing where \a bytes are not exactly one picture's changes.
    [[nodiscard]] static std::optional<BandChanges> read(const QByteArray &bytes);
    /// All but the bands themselves: those of \a picture that are set in \a changed.
    [[nodiscard]] static QByteArray head(const JpegBands &picture, const std::vector<bool> &changed);
};

} // namespace vornic
