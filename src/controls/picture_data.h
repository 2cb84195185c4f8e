#pragma once

#include <QByteArray>
#include <QImage>

namespace vornic {

/// An uncompressed TIFF file of eight bits a channel with opacity; empty for a null image.
[[nodiscard]] QByteArray tiffData(const QImage &image);
/// A PDF file of one page without margins, one point a pixel; empty for a null image.
[[nodiscard]] QByteArray pdfData(const QImage &image);

} // namespace vornic
