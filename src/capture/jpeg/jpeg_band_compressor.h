#pragma once

#include "capture/jpeg/jpeg_bands.h"

#include <QByteArray>

#include <cstdint>
#include <optional>
#include <vector>

namespace vornic {

class BitmapImage;

/// Turns one grabbed picture after the other into the bands of a JPEG picture, and compresses only what changed.
///
/// A band of the version that was compressed last keeps its bytes; the others are compressed on all
/// processors. Owned by whoever spools a recording, used by one thread at a time.
class JpegBandCompressor
{
public:
    /// Valid until the next call. Nothing when the library refuses the picture's size.
    [[nodiscard]] std::optional<JpegBands> compress(const BitmapImage &image);

    /// Bands that the last call compressed; the bytes of the others were used again.
    [[nodiscard]] int compressedBandCount() const { return m_compressedBandCount; }

private:
    struct Band {
        std::uint64_t version = 0; ///< 0: none yet
        QByteArray run;            ///< the JPEG picture of the run that it was compressed in
        QByteArrayView bytes;      ///< its part of the run
    };
    struct Run {
        int firstBand;
        int bandCount;
    };

    void start(const BitmapImage &image);
    [[nodiscard]] std::vector<Run> changedRuns(const BitmapImage &image) const;
    bool compressRun(const BitmapImage &image, Run run);

    QSize m_size;
    QByteArray m_header; ///< that of the whole picture
    std::vector<Band> m_bands;
    int m_compressedBandCount = 0;
};

} // namespace vornic
