#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QSize>

#include <optional>
#include <vector>

namespace vornic {

/// The parts of a JPEG picture (ITU-T T.81) whose bands can be coded apart: baseline, 4:2:0, with a restart
/// marker behind every row of 16 x 16 units, so that a band of 16 pixel rows is one run of bytes.
///
/// A plain value; \a bands look into bytes that somebody else keeps, and are valid as long as those.
struct JpegBands {
    QSize size;                        ///< pixels
    QByteArray header;                 ///< from the start of the image to the end of the scan header
    std::vector<QByteArrayView> bands; ///< entropy-coded bytes from the top, without the markers between them

    /// The parts of \a jpeg; nothing when it is not such a picture.
    [[nodiscard]] static std::optional<JpegBands> split(const QByteArray &jpeg);

    /// What the whole picture is made of, in order; valid as long as this value and the bytes of its bands.
    [[nodiscard]] std::vector<QByteArrayView> pieces() const;
    /// The whole picture.
    [[nodiscard]] QByteArray joined() const;
};

/// \a header with the picture's height replaced; it must be one that split() gave.
[[nodiscard]] QByteArray jpegHeaderWithHeight(const QByteArray &header, int height);

/// Whether \a bytes may stand between two restart markers: there are some, and no marker is among them.
[[nodiscard]] bool isJpegBand(QByteArrayView bytes);

} // namespace vornic
