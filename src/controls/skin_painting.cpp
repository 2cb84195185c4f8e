#include "controls/skin_painting.h"

#include "controls/skin_colors.h"
#include "controls/skin_pictures.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QStyle>
#include <QWidget>

#include <cmath>

namespace vornic {

namespace {

constexpr double capWidth = 4;

/// Glyphs whose baseline lies between two rows of pixels are drawn soft by some font engines.
double onPixelRow(const QPainter &painter, double y)
{
    const QTransform toDevice = painter.deviceTransform();
    return (std::round(y * toDevice.m22() + toDevice.dy()) - toDevice.dy()) / toDevice.m22();
}

/// What is drawn one behind the other: the underlined letter of a mnemonic is drawn by itself, and so are the letters
/// around it, without kerning between them.
QStringList piecesOf(const SkinText &text)
{
    constexpr QLatin1Char mark('&');
    QStringList pieces { QString() };
    for (qsizetype i = 0; i < text.text.size(); ++i) {
        const bool isMarked = text.text[i] == mark && i + 1 < text.text.size();
        if (isMarked)
            ++i;
        if (isMarked && text.text[i] != mark)
            pieces += { text.text[i], QString() };
        else
            pieces.last() += text.text[i];
    }
    return pieces;
}

} // namespace

double skinTextWidth(const SkinText &text)
{
    const QFontMetricsF metrics(text.font);
    if (!(text.flags & Qt::TextShowMnemonic))
        return std::ceil(metrics.size(text.flags | Qt::TextSingleLine, text.text).width());
    double width = 0;
    for (const QString &piece : piecesOf(text))
        width += metrics.horizontalAdvance(piece);
    return std::ceil(width);
}

bool isSkinTextElided(const SkinText &text, double width)
{
    return skinTextWidth(text) > std::ceil(width);
}

void drawSkinText(QPainter &painter, const QRectF &rectangle, const SkinText &text)
{
    const QFontMetricsF metrics(text.font);
    const double height = metrics.height();
    const double y = onPixelRow(painter, rectangle.y() + (rectangle.height() - height) / 2);
    const QRectF line(rectangle.x(), y, rectangle.width(), height);
    QString shown = text.text;
    if (isSkinTextElided(text, line.width()))
        shown = metrics.elidedText(text.text, text.elision, line.width(), text.flags);
    const int flags = text.flags | Qt::AlignTop | Qt::TextSingleLine | Qt::TextDontClip;
    painter.save();
    painter.setFont(text.font);
    if (text.hasShadow) {
        painter.setPen(skin::textShadow());
        painter.drawText(line.translated(0, 1), flags, shown);
    }
    painter.setPen(text.color);
    painter.drawText(line, flags, shown);
    painter.restore();
}

int mnemonicFlag(const QWidget &control)
{
    const bool underlines = control.style()->styleHint(QStyle::SH_UnderlineShortcut, nullptr, &control) != 0;
    return underlines ? Qt::TextShowMnemonic : Qt::TextHideMnemonic;
}

void drawFieldLeft(QPainter &painter, const QRectF &frame, bool enabled, double rightWidth)
{
    const QString suffix = enabled ? QStringLiteral(".png") : QStringLiteral("disable.png");
    const double middle = frame.width() - capWidth - rightWidth;
    drawSkinPicture(painter,
                    QStringLiteral("editleft") + suffix,
                    { frame.x(), frame.y(), capWidth, double(skinFieldHeight) });
    drawSkinPicture(painter,
                    QStringLiteral("editcenter") + suffix,
                    { frame.x() + capWidth, frame.y(), middle, double(skinFieldHeight) });
}

void drawFocusOutline(QPainter &painter, const QRectF &shape, double radius)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(skin::focus(), 2));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(shape.adjusted(1, 1, -1, -1), radius - 1, radius - 1);
    painter.restore();
}

} // namespace vornic
