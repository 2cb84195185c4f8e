#include "options/logo/reduced_picture.h"

#include "geometry/y_up.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace vornic {

namespace {

/// From the pixels of a picture, y down, to those of the device.
QTransform deviceTransform(const QPainter &painter, const QRectF &rectangle, QSize picture)
{
    const QTransform place(rectangle.width() / picture.width(),
                           0,
                           0,
                           -rectangle.height() / picture.height(),
                           rectangle.x(),
                           rectangle.y() + rectangle.height());
    return place * painter.deviceTransform();
}

/// Neither upright nor lying.
bool isOblique(const QTransform &transform)
{
    constexpr double least = 1e-9;
    return std::abs(transform.m11()) > least && std::abs(transform.m12()) > least;
}

/// Few enough pixels for many samples of each, and at a place that whole numbers hold.
bool isSmall(const QRectF &box)
{
    constexpr double farthest = 1e6;
    constexpr double mostPixels = 2e6;
    return box.width() * box.height() < mostPixels && std::abs(box.x()) < farthest
        && std::abs(box.y()) < farthest;
}

} // namespace

void ReducedPicture::draw(QPainter &painter, const QRectF &rectangle, const QImage &picture)
{
    const QTransform toDevice = deviceTransform(painter, rectangle, picture.size());
    const double factor = std::sqrt(std::abs(toDevice.determinant()));
    if (!(factor < 0.5)) { // also for no number
        drawImageYUp(painter, rectangle, picture);
        return;
    }
    const QRectF box = toDevice.mapRect(QRectF(picture.rect()));
    if (isOblique(toDevice) && isSmall(box)) {
        drawTurned(painter, picture, toDevice, box.toAlignedRect());
        return;
    }
    // The painter's smoothing makes the average of two by two pixels.
    copy(picture, 2 * factor);
    drawImageYUp(painter, rectangle, m_copy);
}

void ReducedPicture::drawTurned(QPainter &painter,
                                const QImage &picture,
                                const QTransform &toDevice,
                                QRect box)
{
    turn(picture, toDevice * QTransform::fromTranslate(-box.x(), -box.y()), box.size());
    const QTransform toWorld = painter.deviceTransform().inverted() * painter.worldTransform();
    painter.save();
    painter.setWorldTransform(QTransform::fromTranslate(box.x(), box.y()) * toWorld);
    painter.drawImage(0, 0, m_turned);
    painter.restore();
}

void ReducedPicture::copy(const QImage &picture, double factor)
{
    const auto reduced
        = [factor](int side) { return std::clamp(static_cast<int>(std::lround(factor * side)), 1, side); };
    const QSize size(reduced(picture.width()), reduced(picture.height()));
    if (m_original == picture.cacheKey() && m_copy.size() == size)
        return;
    m_copy = size == picture.size() ? picture
                                    : picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    m_original = picture.cacheKey();
    m_turned = {};
    ++m_copies;
}

void ReducedPicture::turn(const QImage &picture, const QTransform &toDevice, QSize size)
{
    constexpr int samples = 4;     // in each direction
    constexpr int bandHeight = 64; // so that the samples of a few rows at a time are in memory
    copy(picture, samples * std::sqrt(std::abs(toDevice.determinant())));
    if (!m_turned.isNull() && m_turnedBy == toDevice && m_turned.size() == size)
        return;
    m_turned = QImage(size, QImage::Format_ARGB32_Premultiplied);
    m_turned.fill(Qt::transparent);
    m_turnedBy = toDevice;
    QPainter turned(&m_turned);
    turned.setCompositionMode(QPainter::CompositionMode_Source);
    for (int y = 0; y < size.height(); y += bandHeight) {
        const QSize band(size.width(), std::min(bandHeight, size.height() - y));
        QImage large(band * samples, QImage::Format_ARGB32_Premultiplied);
        large.fill(Qt::transparent);
        QPainter painter(&large);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        painter.scale(samples, samples);
        painter.translate(0, -y);
        painter.setTransform(toDevice, true);
        painter.drawImage(QRectF(picture.rect()), m_copy);
        painter.end();
        turned.drawImage(0, y, large.scaled(band, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    }
}

} // namespace vornic
