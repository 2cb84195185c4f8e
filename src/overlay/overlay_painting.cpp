#include "overlay/overlay_painting.h"

#include "geometry/y_up.h"
#include "options/VNLogoContext.h"
#include "overlay/overlay_geometry.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace vornic {

namespace {

QColor tintColor()
{
    return QColor::fromRgbF(0, 0.8F, 1, 0.13F);
}

QColor handleColor()
{
    return QColor::fromRgbF(0, 0.8F, 1);
}

QColor frameColor(const OverlayLook &look)
{
    return look.isKey ? QColor::fromRgbF(1, 1, 1) : QColor::fromRgbF(0.8F, 0.8F, 0.8F);
}

/// Outside the frame, so that it is seen on white.
QColor hairlineColor()
{
    return QColor::fromRgbF(0, 0, 0, 0.5F);
}

QColor opaqueHairlineColor()
{
    return QColor::fromRgbF(0.25F, 0.25F, 0.25F);
}

QRectF hairlineBounds(const QRectF &bounds)
{
    return bounds.adjusted(1, 1, -1, -1);
}

/// What the window holds of the view; y up.
QRectF heldPart(const OverlayLook &look)
{
    return look.held ? flipped(QRectF(*look.held), look.bounds.height()) : look.bounds;
}

void fillHandles(QPainter &painter, const OverlayLook &look, const QRectF &held)
{
    for (int region = 0; region < static_cast<int>(DragRegion::Centre); ++region) {
        if (const auto handle = hotRegion(look.bounds, region); handle->boundingRect().intersects(held))
            painter.fillPath(*handle, handleColor());
    }
}

bool isShown(const VNLogoContext *logo)
{
    return logo && logo->LogoValidate();
}

/// The pixels whose middle lies in the disc inside \a square; both y down.
QRegion pixelsOfDisc(const QRectF &square)
{
    const double radius = square.width() / 2;
    const QPointF centre = square.center();
    QRegion pixels;
    for (int y = square.toAlignedRect().top(); y <= square.toAlignedRect().bottom(); ++y) {
        const double above = y + 0.5 - centre.y();
        const double half = std::sqrt(std::max(0.0, radius * radius - above * above));
        const int left = static_cast<int>(std::ceil(centre.x() - half - 0.5));
        const int right = static_cast<int>(std::floor(centre.x() + half - 0.5));
        if (half > 0 && left <= right)
            pixels += QRect(left, y, right - left + 1, 1);
    }
    return pixels;
}

/// What is seen of \a bar in \a held where it is dashed.
void addDashes(std::vector<QRectF> &parts, const QRectF &bar, const QRectF &held)
{
    constexpr double dash = 16;
    constexpr double period = 28;
    const QRectF seen = bar & held;
    const bool isUpright = bar.height() > bar.width();
    const double begin = isUpright ? bar.top() : bar.left();
    const double end = isUpright ? seen.bottom() : seen.right();
    const double before = std::floor(((isUpright ? seen.top() : seen.left()) - begin) / period);
    for (double at = begin + before * period; !seen.isEmpty() && at < end; at += period)
        parts.push_back((isUpright ? QRectF(bar.left(), at, bar.width(), dash)
                                   : QRectF(at, bar.top(), dash, bar.height()))
                        & seen);
}

/// The parts of the frame in \a held; y as they have it.
std::vector<QRectF> frameParts(const OverlayLook &look, const QRectF &held)
{
    std::vector<QRectF> parts;
    for (const QRectF &bar : hotBars(look.bounds)) {
        if (look.isPaused)
            addDashes(parts, bar, held);
        else
            parts.push_back(bar & held);
    }
    return parts;
}

QRegion frameRegion(const QRectF &bounds)
{
    const QRect outer = bounds.toRect().adjusted(2, 2, -2, -2);
    return QRegion(outer) - QRegion(outer.adjusted(4, 4, -4, -4));
}

/// The pixels of the frame; y down.
QRegion shownFrame(const OverlayLook &look)
{
    if (!look.isPaused)
        return frameRegion(look.bounds);
    QRegion frame;
    for (const QRectF &part : frameParts(look, look.held ? QRectF(*look.held) : look.bounds))
        frame += part.toRect();
    return frame;
}

QRegion hairlineRegion(const QRectF &bounds)
{
    const QRect outer = hairlineBounds(bounds).toRect();
    return QRegion(outer) - QRegion(outer.adjusted(1, 1, -1, -1));
}

QRegion handlesRegion(const QRectF &bounds)
{
    QRegion handles;
    for (int region = 0; region < static_cast<int>(DragRegion::Centre); ++region)
        handles += pixelsOfDisc(flipped(hotRegion(bounds, region)->boundingRect(), bounds.height()));
    return handles;
}

/// Whether row \a row of a logo shows at \a opacity of 0 to 255; the rows left of every eight lie even.
bool rowShows(int row, qint64 opacity)
{
    constexpr std::array order { 0, 4, 2, 6, 1, 5, 3, 7 };
    const qint64 position = order[static_cast<std::size_t>(row % 8)];
    return (2 * position + 1) * 255 < 16 * opacity;
}

/// Makes each pixel of \a row opaque or nothing, and adds the runs of opaque ones to \a runs.
void hardenRow(QRgb *row, int width, int y, std::vector<QRect> &runs)
{
    int first = -1;
    for (int x = 0; x < width; ++x) {
        const bool isThere = qAlpha(row[x]) >= 128;
        if (isThere)
            row[x] = qUnpremultiply(row[x]) | 0xff000000U;
        else
            row[x] = 0;
        if (isThere && first < 0) {
            first = x;
        } else if (!isThere && first >= 0) {
            runs.emplace_back(first, y, x - first, 1);
            first = -1;
        }
    }
    if (first >= 0)
        runs.emplace_back(first, y, width - first, 1);
}

/// Makes each pixel of \a picture opaque or nothing; the opaque ones.
QRegion harden(QImage &picture, qint64 opacity)
{
    std::vector<QRect> runs;
    for (int y = 0; y < picture.height(); ++y) {
        auto *const row = reinterpret_cast<QRgb *>(picture.scanLine(y));
        if (rowShows(y, opacity))
            hardenRow(row, picture.width(), y, runs);
        else
            std::fill_n(row, picture.width(), QRgb { 0 });
    }
    QRegion region;
    region.setRects(runs.data(), static_cast<int>(runs.size()));
    return region;
}

/// The logo at full opacity on nothing.
QImage solidLogo(const VNLogoContext &logo, const QRect &pixels, double height)
{
    QImage picture(pixels.size(), QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.translate(-pixels.topLeft());
    flipPainter(painter, height);
    logo.decorateAtOpacity(1.0, painter, QRectF(0, 0, 0, height), 1.0);
    return picture;
}

} // namespace

void paintOverlay(QPainter &painter, const OverlayLook &look, const VNLogoContext *logo)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false); // all that is straight lies on whole pixels
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    const QRectF held = heldPart(look);
    painter.fillRect(held, Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    if (!look.isRecording)
        painter.fillRect(subjectRadiusBound(look.bounds) & held, tintColor());
    for (const QRectF &line : frameBars(hairlineBounds(look.bounds), 1))
        painter.fillRect(line & held, hairlineColor());
    for (const QRectF &part : frameParts(look, held))
        painter.fillRect(part, frameColor(look));
    painter.setRenderHint(QPainter::Antialiasing);
    if (!look.isRecording)
        fillHandles(painter, look, held);
    if (isShown(logo))
        logo->decorateImage(painter, look.bounds, 1.0);
    painter.restore();
}

QRect logoPixels(const VNLogoContext *logo, const QRectF &bounds)
{
    if (!isShown(logo))
        return {};
    const QRectF drawn = flipped(logo->decoratedRect(bounds, 1.0), bounds.height());
    return drawn.adjusted(-1, -1, 1, 1).intersected(bounds).toAlignedRect();
}

LogoStencil stencilOf(const VNLogoContext *logo, const QRectF &bounds, const std::optional<QRect> &held)
{
    LogoStencil stencil;
    QRect pixels = logoPixels(logo, bounds);
    if (held)
        pixels &= *held;
    if (pixels.isEmpty())
        return stencil;
    stencil.picture = solidLogo(*logo, pixels, bounds.height());
    stencil.topLeft = pixels.topLeft();
    // Stored values may lie far outside.
    const qint64 opacity = std::clamp(logo->LogoTransparency(), qint64 { 0 }, qint64 { 255 });
    stencil.shape = harden(stencil.picture, opacity).translated(pixels.topLeft());
    return stencil;
}

QRegion overlayShape(const OverlayLook &look, const LogoStencil &logo)
{
    QRegion shape = hairlineRegion(look.bounds) + shownFrame(look) + logo.shape;
    if (!look.isRecording)
        shape += handlesRegion(look.bounds);
    return look.held ? shape & *look.held : shape;
}

void paintShapedOverlay(QPainter &painter, const OverlayLook &look, const LogoStencil &logo)
{
    const QRegion held(look.held.value_or(look.bounds.toAlignedRect()));
    for (const QRect &line : hairlineRegion(look.bounds) & held)
        painter.fillRect(line, opaqueHairlineColor());
    for (const QRect &bar : shownFrame(look) & held)
        painter.fillRect(bar, frameColor(look));
    if (!look.isRecording) {
        for (const QRect &part : handlesRegion(look.bounds) & held)
            painter.fillRect(part, handleColor());
    }
    painter.drawImage(logo.topLeft, logo.picture);
}

QRegion changedRegion(const OverlayLook &before, const OverlayLook &after)
{
    if (before == after)
        return {};
    OverlayLook beforeButFrame = before;
    beforeButFrame.isKey = after.isKey;
    beforeButFrame.isPaused = after.isPaused;
    if (beforeButFrame == after)
        return frameRegion(after.bounds);
    return after.bounds.toAlignedRect();
}

} // namespace vornic
