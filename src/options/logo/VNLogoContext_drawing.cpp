#include "geometry/y_up.h"
#include "options/VNLogoContext.h"
#include "options/logo/legacy_text.h"
#include "options/logo/unicode_text.h"

#include <QPainter>
#include <QPainterPath>
#include <QTransform>

#include <algorithm>
#include <cmath>
#include <vector>

namespace vornic {

namespace {

constexpr double characterSpacing = 10;
constexpr double outlineWidth = 1;
/// How far a mitre may reach, in widths of the line.
constexpr double mitreLimit = 5;

/// A colour with its own alpha left out; black for none.
QColor opaque(const QColor &color)
{
    return QColor::fromRgbF(color.redF(), color.greenF(), color.blueF());
}

/// What can be drawn into: neither without an area nor beyond all numbers.
bool isDrawable(const QRectF &rectangle)
{
    const double sum = rectangle.x() + rectangle.y() + rectangle.width() + rectangle.height();
    return std::isfinite(sum) && rectangle.width() != 0 && rectangle.height() != 0;
}

/// Whether anything within \a rectangle can be seen; what is beyond the painter's surface takes as long to draw as what
/// is not.
bool isOnSurface(const QPainter &context, const QRectF &rectangle)
{
    return context.combinedTransform().mapRect(rectangle).intersects(QRectF(context.viewport()));
}

/// Where a glyph leaves ink.
QRectF inkedRect(const QPainterPath &outline)
{
    constexpr double reach = outlineWidth * mitreLimit;
    return outline.controlPointRect().adjusted(-reach, -reach, reach, reach);
}

/// Glyph by glyph: one path of them all takes ten times as long to fill.
void drawText(QPainter &context, std::vector<QPainterPath> outlines, const QColor &fill, const QColor &stroke)
{
    std::erase_if(outlines,
                  [&](const QPainterPath &outline) { return !isOnSurface(context, inkedRect(outline)); });
    QPen pen(opaque(stroke), outlineWidth, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin);
    pen.setMiterLimit(mitreLimit);
    for (const QPainterPath &outline : outlines)
        context.fillPath(outline, opaque(fill));
    for (const QPainterPath &outline : outlines)
        context.strokePath(outline, pen);
}

QRectF inkedRect(const std::vector<QPainterPath> &outlines)
{
    QRectF all;
    for (const QPainterPath &outline : outlines)
        all |= inkedRect(outline);
    return all;
}

/// A factor, 1 at most, at which a picture of \a size can be kept, also when it is rounded up to whole pixels.
double factorToKeep(QSizeF size)
{
    constexpr double maxSide = 32000;
    constexpr double maxPixels = 0.99 * static_cast<double>(Picture::maxPixels);
    const double pixels = size.width() * size.height();
    return std::min({ 1.0, maxSide / size.width(), maxSide / size.height(), std::sqrt(maxPixels / pixels) });
}

/// The smallest rectangle with all pixels that are not transparent.
QRect opaquePart(const QImage &image)
{
    QRect part;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) != 0)
                part |= QRect(x, y, 1, 1);
        }
    }
    return part;
}

} // namespace

QPointF VNLogoContext::anchor(const QRectF &bound, double scale) const
{
    return LogoPosition() * scale + bound.topLeft();
}

QTransform VNLogoContext::rotation() const
{
    return QTransform().rotate(static_cast<double>(mLogoRotation % 360));
}

QRectF VNLogoContext::centredPicture(double scale) const
{
    const QSizeF size = QSizeF(mLogoImage.image().size()) * mLogoScale * scale;
    return { -0.5 * size.width(), -0.5 * size.height(), size.width(), size.height() };
}

QTransform VNLogoContext::pictureTransform(const QRectF &bound, double scale) const
{
    const QPointF centre = anchor(bound, scale) - centredPicture(scale).topLeft();
    return rotation() * QTransform::fromTranslate(centre.x(), centre.y());
}

std::vector<QPainterPath> VNLogoContext::textOutlines(const QRectF &bound, double scale) const
{
    const QPointF start = anchor(bound, scale);
    if (!std::isfinite(start.x() + start.y()))
        return {};
    std::vector<QPainterPath> outlines
        = glyphOutlines(singleByteCharacters(LogoText()), scaledLogoFont(scale), characterSpacing);
    const QTransform place = rotation() * QTransform::fromTranslate(start.x(), start.y());
    for (QPainterPath &outline : outlines)
        outline = place.map(outline);
    return outlines;
}

void VNLogoContext::decorateImage(QPainter &context, const QRectF &bound, double scale) const
{
    const float opacity = static_cast<float>(mLogoTransparency) / 255.F;
    decorateAtOpacity(static_cast<double>(std::clamp(opacity, 0.F, 1.F)), context, bound, scale);
}

void VNLogoContext::decorateAtOpacity(double opacity,
                                      QPainter &context,
                                      const QRectF &bound,
                                      double scale) const
{
    context.save();
    context.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    context.setCompositionMode(QPainter::CompositionMode_SourceOver);
    context.setOpacity(opacity);
    if (isLogoTypeText())
        drawText(context, textOutlines(bound, scale), LogoFontFillColor(), LogoFontStrokeColor());
    else
        drawPicture(context, bound, scale);
    context.restore();
}

void VNLogoContext::drawPicture(QPainter &context, const QRectF &bound, double scale) const
{
    const QRectF picture = centredPicture(scale);
    if (!isDrawable(picture.translated(anchor(bound, scale))))
        return;
    context.setTransform(pictureTransform(bound, scale), true);
    m_reducedPicture.draw(context, picture.normalized(), mLogoImage.image());
}

QRectF VNLogoContext::decoratedRect(const QRectF &bound, double scale) const
{
    if (isLogoTypeText())
        return inkedRect(textOutlines(bound, scale));
    const QRectF picture = centredPicture(scale);
    return isDrawable(picture.translated(anchor(bound, scale)))
        ? pictureTransform(bound, scale).mapRect(picture.normalized())
        : QRectF();
}

PictureOfText VNLogoContext::pictureOfText() const
{
    const std::vector<QPainterPath> outlines
        = unicodeOutlines(LogoText(), scaledLogoFont(1), characterSpacing);
    const QRectF ink = inkedRect(outlines);
    if (!isDrawable(ink))
        return {};
    const double factor = factorToKeep(ink.size());
    // Whole pixels, so that letters are drawn into them as they are drawn on the screen.
    const QPointF corner(std::floor(ink.x() * factor), std::floor(ink.y() * factor));
    const QSize size(static_cast<int>(std::ceil(ink.right() * factor - corner.x())),
                     static_cast<int>(std::ceil(ink.bottom() * factor - corner.y())));
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return {};
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHints(QPainter::Antialiasing);
    flipPainter(painter, size.height());
    painter.translate(-corner);
    painter.scale(factor, factor);
    drawText(painter, outlines, LogoFontFillColor(), LogoFontStrokeColor());
    painter.end();
    const QRect part = opaquePart(image);
    const double scale = 1 / factor;
    const QRectF inPoints((corner + QPointF(part.x(), size.height() - part.y() - part.height())) * scale,
                          QSizeF(part.size()) * scale);
    // The text turns about the start of its baseline, a picture about its centre.
    const QPointF centre = LogoPosition() + rotation().map(inPoints.center());
    return { image.copy(part), centre - QPointF(inPoints.width(), inPoints.height()) / 2, scale };
}

QImage VNLogoContext::decorateCGImage(const QImage &image) const
{
    if (image.isNull())
        return {};
    QImage stamped(image.size(), QImage::Format_RGB32);
    if (stamped.isNull())
        return {};
    stamped.fill(Qt::black);
    const QRect whole = stamped.rect();
    QPainter painter(&stamped);
    painter.drawImage(whole, image, image.rect());
    flipPainter(painter, whole.height());
    decorateImage(painter, whole, 1.0);
    return stamped;
}

QImage VNLogoContext::decorateNSImage(const QImage &image) const
{
    if (image.isNull())
        return {};
    return LogoValidate() ? decorateCGImage(image) : image;
}

} // namespace vornic
