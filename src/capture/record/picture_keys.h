#pragma once

#include <QLatin1StringView>

namespace vornic {

/// How a record tells its picture: by one of the first three.

/// The bytes of a JPEG file.
inline constexpr QLatin1StringView pictureKey("cgimage.jpegrep");
/// The bands in which it differs from the picture of the record before: BandChanges.
inline constexpr QLatin1StringView changedBandsKey("cgimage.bands");
/// True: the picture is that of the record before.
inline constexpr QLatin1StringView samePictureKey("cgimage.same");
/// Beside a whole picture, where not all of it has changed since the record before: a bit for each band, from
/// the lowest of the first byte on, set where the band differs.
inline constexpr QLatin1StringView newBandsKey("cgimage.new");

} // namespace vornic
