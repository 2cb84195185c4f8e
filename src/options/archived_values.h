#pragma once

#include <QColor>
#include <QFont>
#include <QLatin1StringView>

#include <optional>

namespace vornic {

class KeyedArchiver;
class KeyedUnarchiver;
class Picture;

/// Colours, fonts and pictures as objects of a keyed archive, on any one thread. Any archive is safe to read:
/// what is not such an object reads as nothing.

/// An invalid colour is not written. Colours come back as red, green, blue and alpha.
void encodeColor(KeyedArchiver &archiver, QLatin1StringView key, const QColor &color);
[[nodiscard]] QColor decodeColor(const KeyedUnarchiver &unarchiver, QLatin1StringView key);

/// Family, size, weight, style, underline and strikeout.
void encodeFont(KeyedArchiver &archiver, QLatin1StringView key, const QFont &font);
/// None without a family and a size that can be drawn.
[[nodiscard]] std::optional<QFont> decodeFont(const KeyedUnarchiver &unarchiver, QLatin1StringView key);

/// As the file that Picture::encoded() gives, under "png" if it is one, otherwise under "file"; a null picture is not
/// written.
void encodePicture(KeyedArchiver &archiver, QLatin1StringView key, const Picture &picture);
/// Null also for a picture of more than Picture::maxPixels, told from its header before memory is taken.
[[nodiscard]] Picture decodePicture(const KeyedUnarchiver &unarchiver, QLatin1StringView key);

} // namespace vornic
