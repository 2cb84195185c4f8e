#include "options/logo/logo_font.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace vornic {

namespace {

/// What may be drawn in place of a face that is not installed, closest first.
QStringList standInsFor(const QString &family)
{
    if (family == u"Helvetica Neue" || family == u"Helvetica")
        return { "Nimbus Sans", "TeX Gyre Heros", "Liberation Sans", "Arimo", "Arial", "DejaVu Sans" };
    if (family == u"LucidaGrande" || family == u"Lucida Grande")
        return { "Lucida Grande", "Lucida Sans", "DejaVu Sans", "Bitstream Vera Sans" };
    return {};
}

} // namespace

QFont defaultLogoFont()
{
    QFont font(QStringList { QStringLiteral("Helvetica Neue") });
    font.setPixelSize(20);
    return font;
}

double fontSizePx(const QFont &font)
{
    return font.pixelSize() > 0 ? font.pixelSize() : font.pointSizeF();
}

QFont withInstalledFace(const QFont &font)
{
    if (QFontDatabase::hasFamily(font.family()))
        return font;
    for (const QString &family : standInsFor(font.family())) {
        if (QFontDatabase::hasFamily(family)) {
            QFont installed = font;
            installed.setFamilies({ family });
            return installed;
        }
    }
    return font;
}

ScaledFont ScaledFont::create(const QFont &font, double sizePx)
{
    if (!std::isfinite(sizePx) || sizePx <= 0)
        return { font, 0 };
    ScaledFont scaled { withInstalledFace(font), 0 };
    const int wholePx = static_cast<int>(std::lround(std::clamp(sizePx, 1.0, 512.0)));
    scaled.font.setPixelSize(wholePx);
    scaled.factor = sizePx / wholePx;
    return scaled;
}

QSizeF singleLineSize(const QString &text, const ScaledFont &font)
{
    if (text.isNull() || font.factor <= 0)
        return { 0, 0 };
    const QFontMetricsF metrics(font.font);
    return QSizeF(metrics.horizontalAdvance(text), metrics.height()) * font.factor;
}

} // namespace vornic
