#pragma once

#include <QLatin1StringView>

namespace vornic {

/// A chunk's samples.
inline constexpr QLatin1StringView chunkDataKey("data");
/// Their format, an archive of its own.
inline constexpr QLatin1StringView chunkFormatKey("dataFormat");
/// In place of the format: it is that of the chunk before. checksumOf() it, by which a reader that has missed
/// chunks can tell.
inline constexpr QLatin1StringView sameFormatKey("dataFormat.same");

/// Where a chunk begins in the sound of its recording, seconds; missing where it is the first.
inline constexpr QLatin1StringView chunkBeginKey("begin");

} // namespace vornic
