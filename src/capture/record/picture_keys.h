#pragma once

#include <QLatin1StringView>

namespace vornic {

/// A record's picture, the bytes of a JPEG file.
inline constexpr QLatin1StringView pictureKey("cgimage.jpegrep");
/// True in place of the bytes: the picture is that of the record before.
inline constexpr QLatin1StringView samePictureKey("cgimage.same");

} // namespace vornic
