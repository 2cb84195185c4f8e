#include "selection/selection_painting.h"

#include "controls/skin_colors.h"
#include "selection/selection_geometry.h"

#include <QCoreApplication>
#include <QFontInfo>
#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace vornic {

namespace {

constexpr int dim = 140;
constexpr int lessDim = 60;

QImage dimmed(const QImage &still, int alpha)
{
    QImage picture = still;
    QPainter painter(&picture);
    painter.fillRect(picture.rect(), QColor(0, 0, 0, alpha));
    return picture;
}

QColor boxColor()
{
    QColor color = skin::recess();
    color.setAlpha(225);
    return color;
}

QString sizeText(QSize size)
{
    return QCoreApplication::translate("vornic::SelectionPainting", "%1 × %2")
        .arg(size.width())
        .arg(size.height());
}

void fill(QPainter &painter, const QRegion &region, const QColor &color)
{
    for (const QRect &part : region)
        painter.fillRect(part, color);
}

/// A line of \a thickness along the inside of \a rectangle.
QRegion border(const QRect &rectangle, int thickness)
{
    return QRegion(rectangle) - rectangle.adjusted(thickness, thickness, -thickness, -thickness);
}

} // namespace

SelectionPainting::SelectionPainting(const QImage &still, double scale, const QFont &font, QString help)
    : m_still(still)
    , m_dimmed(dimmed(still, dim))
    , m_scale(scale)
    , m_font(font)
    , m_help(std::move(help))
{
    m_font.setPixelSize(std::max(scaled(QFontInfo(font).pixelSize()), 1));
}

int SelectionPainting::scaled(double length) const
{
    return static_cast<int>(std::lround(length * m_scale));
}

QSize SelectionPainting::boxAround(const QString &text, int maxWidth) const
{
    const int padding = scaled(8);
    const QRect within(0, 0, maxWidth - 2 * padding, m_still.height());
    const QSize size
        = QFontMetrics(m_font).boundingRect(within, Qt::AlignCenter | Qt::TextWordWrap, text).size();
    return size + QSize(2 * padding, padding);
}

QRect SelectionPainting::aroundPointer(const SelectionLook &look) const
{
    const int reach = scaled(12);
    return look.pointer ? QRect(*look.pointer, QSize(1, 1)).adjusted(-reach, -reach, reach, reach) : QRect();
}

QRect SelectionPainting::labelPlace(const SelectionLook &look, const QRect &help) const
{
    const int gap = scaled(6);
    const QSize size = boxAround(sizeText(look.rectangle.size()), m_still.width());
    const QRect &chosen = look.rectangle;
    const int above = chosen.y() - gap - size.height();
    const int below = chosen.y() + chosen.height() + gap;
    const int leftOf = chosen.x() - gap - size.width();
    const int rightOf = chosen.x() + chosen.width() + gap;
    const int right = chosen.x() + chosen.width() - size.width();
    const int bottom = chosen.y() + chosen.height() - size.height();
    std::vector<QRect> places;
    for (const QPoint place : { QPoint(chosen.x(), above),
                                QPoint(right, above),
                                QPoint(chosen.x(), below),
                                QPoint(right, below),
                                QPoint(leftOf, chosen.y()),
                                QPoint(rightOf, chosen.y()),
                                QPoint(leftOf, bottom),
                                QPoint(rightOf, bottom),
                                QPoint(chosen.x() + gap, chosen.y() + gap) })
        places.emplace_back(place, size);
    return leastCovering(places, { chosen, help, aroundPointer(look) }, m_still.size());
}

QRect SelectionPainting::helpPlace(const SelectionLook &look) const
{
    const int gap = scaled(16);
    const QSize size = boxAround(m_help, std::max(m_still.width() - 2 * gap, 1));
    const int x = (m_still.width() - size.width()) / 2;
    return leastCovering(
        { QRect(QPoint(x, m_still.height() - gap - size.height()), size), QRect(QPoint(x, gap), size) },
        { aroundPointer(look), look.rectangle },
        m_still.size());
}

QRect SelectionPainting::lensPlace(const SelectionLook &look, const SelectionLayout &others) const
{
    if (!look.pointer)
        return {};
    const int side = lensPixels * zoom() + 2 * scaled(2);
    // In one of the four directions, near the pointer if it can be.
    std::vector<QRect> places;
    for (const auto &[x, y] :
         { std::pair(24, 24), std::pair(24, 120), std::pair(120, 24), std::pair(120, 120) }) {
        const QPoint after(scaled(x) + 1, scaled(y) + 1);
        const QPoint before(-scaled(x) - side, -scaled(y) - side);
        for (const QPoint place :
             { after, QPoint(after.x(), before.y()), QPoint(before.x(), after.y()), before })
            places.emplace_back(*look.pointer + place, QSize(side, side));
    }
    return leastCovering(
        places, { aroundPointer(look), others.label, others.help, look.rectangle }, m_still.size());
}

SelectionLayout SelectionPainting::layout(const SelectionLook &look) const
{
    SelectionLayout places;
    places.help = helpPlace(look);
    places.label = labelPlace(look, places.help);
    places.lens = lensPlace(look, places);
    return places;
}

void SelectionPainting::paint(QPainter &painter, const SelectionLook &look) const
{
    painter.drawImage(QPoint(), m_dimmed);
    if (!look.window.isEmpty()) {
        painter.drawImage(look.window.topLeft(), m_still, look.window);
        painter.fillRect(look.window, QColor(0, 0, 0, lessDim));
    }
    painter.drawImage(look.rectangle.topLeft(), m_still, look.rectangle);
    fill(painter, frameAround(look.rectangle, scaled(2), m_still.size()), skin::focus());
    if (!look.window.isEmpty())
        fill(painter, frameAround(look.window, scaled(3), m_still.size()), skin::value());
    const SelectionLayout places = layout(look);
    paintBox(painter, places.help, m_help);
    paintBox(painter, places.label, sizeText(look.rectangle.size()));
    if (look.pointer)
        paintLens(painter, places.lens, *look.pointer);
}

void SelectionPainting::paintBox(QPainter &painter, const QRect &box, const QString &text) const
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(boxColor());
    painter.drawRoundedRect(box, scaled(4), scaled(4));
    painter.setFont(m_font);
    painter.setPen(skin::value());
    const int padding = scaled(8);
    painter.drawText(box.adjusted(padding, 0, -padding, 0), Qt::AlignCenter | Qt::TextWordWrap, text);
    painter.restore();
}

void SelectionPainting::paintLens(QPainter &painter, const QRect &lens, QPoint pointer) const
{
    const int edge = scaled(2);
    const int line = std::max(scaled(1), 1);
    const QPoint inside = lens.topLeft() + QPoint(edge, edge);
    const QPoint first = pointer - QPoint(lensPixels / 2, lensPixels / 2);
    const QRect shown = QRect(first, QSize(lensPixels, lensPixels)).intersected(m_still.rect());
    painter.fillRect(lens, skin::recess());
    painter.drawImage(
        QRect(inside + (shown.topLeft() - first) * zoom(), shown.size() * zoom()), m_still, shown);
    fill(painter, border(lens, edge), skin::recess());
    fill(painter, border(lens, line), skin::value());
    const QRect middle(inside + (pointer - first) * zoom(), QSize(zoom(), zoom()));
    fill(painter, border(middle.adjusted(-2 * line, -2 * line, 2 * line, 2 * line), line), Qt::black);
    fill(painter, border(middle.adjusted(-line, -line, line, line), line), skin::value());
}

QRegion SelectionPainting::changed(const SelectionLook &before, const SelectionLook &after) const
{
    QRegion region;
    const auto addFrame = [&](const QRect &from, const QRect &to, int thickness) {
        if (from == to)
            return;
        region += QRegion(from).xored(to);
        for (const QRect &rectangle : { from, to })
            if (!rectangle.isEmpty())
                region += frameAround(rectangle, thickness, m_still.size());
    };
    addFrame(before.rectangle, after.rectangle, scaled(2));
    addFrame(before.window, after.window, scaled(3));
    const SelectionLayout from = layout(before);
    const SelectionLayout to = layout(after);
    const auto addBox = [&](const QRect &old, const QRect &now, bool isOther) {
        if (isOther || old != now)
            region += QRegion(old) + now;
    };
    addBox(from.label, to.label, before.rectangle != after.rectangle);
    addBox(from.help, to.help, false);
    addBox(from.lens, to.lens, before.pointer != after.pointer);
    return region;
}

} // namespace vornic
