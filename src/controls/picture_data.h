#pragma once

#include <QByteArray>
#include <QImage>

namespace vornic {

/// A TIFF file of the pixels with their opacity; empty for a null image, and where the toolkit's plugin for TIFF
/// is not installed.
[[nodiscard]] QByteArray tiffData(const QImage &image);
/// A PDF file of one page without margins, one point a pixel; empty for a null image.
[[nodiscard]] QByteArray pdfData(const QImage &image);

} // namespace vornic
