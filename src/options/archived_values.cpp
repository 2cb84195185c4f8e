#include "options/archived_values.h"

#include "base/keyed_archive.h"
#include "pictures/picture.h"

#include <algorithm>

namespace vornic {

using namespace Qt::StringLiterals;

namespace {

constexpr double maxFontSize = 10000;

int colorComponent(const KeyedUnarchiver &unarchiver, QLatin1StringView key)
{
    return std::clamp(unarchiver.decodeInt32(key), 0, 0xffff);
}

QFont::Style fontStyle(std::int32_t stored)
{
    return stored == QFont::StyleItalic || stored == QFont::StyleOblique ? static_cast<QFont::Style>(stored)
                                                                         : QFont::StyleNormal;
}

/// True when the archive held a size that can be drawn; only one of the two ways of giving it is written.
bool setStoredSize(QFont &font, const KeyedUnarchiver &stored)
{
    const std::int32_t pixels = stored.decodeInt32("pixelSize"_L1);
    const double points = stored.decodeDouble("pointSize"_L1);
    if (pixels > 0 && pixels <= maxFontSize)
        font.setPixelSize(pixels);
    else if (points > 0 && points <= maxFontSize)
        font.setPointSizeF(points);
    else
        return false;
    return true;
}

bool isPng(const QByteArray &file)
{
    return file.startsWith("\x89PNG");
}

} // namespace

void encodeColor(KeyedArchiver &archiver, QLatin1StringView key, const QColor &color)
{
    if (!color.isValid())
        return;
    archiver.encodeObject(key, [rgba = color.rgba64()](KeyedArchiver &object) {
        object.encodeInt32("red"_L1, rgba.red());
        object.encodeInt32("green"_L1, rgba.green());
        object.encodeInt32("blue"_L1, rgba.blue());
        object.encodeInt32("alpha"_L1, rgba.alpha());
    });
}

QColor decodeColor(const KeyedUnarchiver &unarchiver, QLatin1StringView key)
{
    const auto stored = unarchiver.decodeObject(key);
    if (!stored)
        return {};
    const auto component
        = [&](QLatin1StringView name) { return static_cast<quint16>(colorComponent(*stored, name)); };
    return QColor::fromRgba64(
        component("red"_L1), component("green"_L1), component("blue"_L1), component("alpha"_L1));
}

void encodeFont(KeyedArchiver &archiver, QLatin1StringView key, const QFont &font)
{
    archiver.encodeObject(key, [&](KeyedArchiver &object) {
        object.encodeString("family"_L1, font.family());
        if (font.pixelSize() > 0)
            object.encodeInt32("pixelSize"_L1, font.pixelSize());
        else
            object.encodeDouble("pointSize"_L1, font.pointSizeF());
        object.encodeInt32("weight"_L1, font.weight());
        object.encodeInt32("style"_L1, font.style());
        object.encodeString("styleName"_L1, font.styleName());
        object.encodeBool("underline"_L1, font.underline());
        object.encodeBool("strikeOut"_L1, font.strikeOut());
    });
}

std::optional<QFont> decodeFont(const KeyedUnarchiver &unarchiver, QLatin1StringView key)
{
    const auto stored = unarchiver.decodeObject(key);
    if (!stored)
        return std::nullopt;
    const QString family = stored->decodeString("family"_L1).value_or(QString());
    QFont font(QStringList { family });
    if (family.isEmpty() || !setStoredSize(font, *stored))
        return std::nullopt;
    const std::int32_t weight = stored->decodeInt32("weight"_L1);
    if (weight >= QFont::Thin && weight <= QFont::Black)
        font.setWeight(static_cast<QFont::Weight>(weight));
    font.setStyle(fontStyle(stored->decodeInt32("style"_L1)));
    if (const auto styleName = stored->decodeString("styleName"_L1); styleName && !styleName->isEmpty())
        font.setStyleName(*styleName);
    font.setUnderline(stored->decodeBool("underline"_L1));
    font.setStrikeOut(stored->decodeBool("strikeOut"_L1));
    return font;
}

void encodePicture(KeyedArchiver &archiver, QLatin1StringView key, const Picture &picture)
{
    if (picture.isNull())
        return;
    const QByteArray file = picture.encoded();
    const QLatin1StringView name = isPng(file) ? "png"_L1 : "file"_L1;
    archiver.encodeObject(key, [&](KeyedArchiver &object) { object.encodeData(name, file); });
}

Picture decodePicture(const KeyedUnarchiver &unarchiver, QLatin1StringView key)
{
    const auto stored = unarchiver.decodeObject(key);
    if (!stored)
        return {};
    const auto png = stored->decodeData("png"_L1);
    return Picture::decoded(png ? *png : stored->decodeData("file"_L1).value_or(QByteArray()));
}

} // namespace vornic
