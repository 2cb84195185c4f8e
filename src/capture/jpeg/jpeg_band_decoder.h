#pragma once

#include <QByteArray>
#include <QImage>

#include <vector>

namespace vornic {

/// Decodes one JPEG picture after the other into the same canvas, and only the bands that changed.
///
/// Owned by whoever composes a movie's frames, used by one thread at a time; decodes on all processors.
class JpegBandDecoder
{
public:
    /// Brings \a canvas from the picture that the last call left there to \a jpeg.
    ///
    /// \a canvas is made anew (Format_RGB32) where its size does not fit. The result says for each band of 16
    /// rows whether its pixels were written; empty when the picture is damaged, and then the canvas holds
    /// nothing of use and the next call writes all of it.
    [[nodiscard]] std::vector<bool> decode(const QByteArray &jpeg, QImage &canvas);

    /// Makes the next call write every band.
    void forget() { m_last.clear(); }

private:
    QByteArray m_last; ///< the picture in the canvas
};

} // namespace vornic
