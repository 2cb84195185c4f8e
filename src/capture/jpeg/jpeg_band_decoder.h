#pragma once

#include <QImage>

#include <cstdint>
#include <vector>

namespace vornic {

class JpegPicture;

/// Decodes one JPEG picture after the other into the same canvas, and only the bands that changed.
///
/// Owned by whoever composes a movie's frames, used by one thread at a time; decodes on all processors.
class JpegBandDecoder
{
public:
    /// Brings \a canvas from the picture that the last call left there to \a picture. Only the versions of
    /// both are compared.
    ///
    /// \a canvas is made anew (Format_RGB32) where its size does not fit. The result says for each band of 16
    /// rows whether its pixels were written; empty when the picture is damaged, and then the canvas holds
    /// nothing of use and the next call writes all of it.
    [[nodiscard]] std::vector<bool> decode(const JpegPicture &picture, QImage &canvas);

    /// Whether the last call left the very pixels of \a picture.
    [[nodiscard]] bool holds(const JpegPicture &picture) const;
    /// Makes the next call write every band.
    void forget() { m_versions.clear(); }

private:
    std::vector<std::uint64_t> m_versions; ///< of the picture in the canvas; none when there is no picture
};

} // namespace vornic
