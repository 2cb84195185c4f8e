#include "controls/skin_pictures.h"

#include <QHash>
#include <QPainter>

#include <array>
#include <cmath>

namespace vornic {

namespace {

struct SkinPicture {
    std::array<QImage, 2> scales; ///< at one and at two pixels a point
};

QImage load(const QString &file)
{
    return QImage(QStringLiteral(":/skin/") + file).convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

const SkinPicture &pictureNamed(const QString &name)
{
    static QHash<QString, SkinPicture> pictures;
    const auto known = pictures.constFind(name);
    if (known != pictures.constEnd())
        return *known;
    QString sharper = name;
    sharper.replace(QStringLiteral(".png"), QStringLiteral("@2x.png"));
    return *pictures.insert(name, { { load(name), load(sharper) } });
}

QRect wholePixels(const QRectF &rectangle)
{
    const QPoint topLeft(qRound(rectangle.left()), qRound(rectangle.top()));
    const QPoint bottomRight(qRound(rectangle.right()), qRound(rectangle.bottom()));
    return { topLeft, bottomRight - QPoint(1, 1) };
}

} // namespace

QImage skinPicture(const QString &name, int scale)
{
    return pictureNamed(name).scales.at(scale > 1 ? 1 : 0);
}

void drawSkinPicture(QPainter &painter, const QString &name, const QRectF &rectangle)
{
    const QTransform toDevice = painter.deviceTransform();
    const QImage picture = skinPicture(name, toDevice.m22() > 1 ? 2 : 1);
    if (picture.isNull())
        return;
    const QRect pixels = wholePixels(toDevice.mapRect(rectangle));
    painter.save();
    // A middle piece that is stretched in one direction is the same all along it.
    const bool isScaled = pixels.width() != picture.width() && pixels.height() != picture.height();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, isScaled);
    painter.drawImage(toDevice.inverted().mapRect(QRectF(pixels)), picture);
    painter.restore();
}

} // namespace vornic
