#pragma once

#include "display/portal/cast_frame.h"

struct spa_buffer;

namespace vornic {

struct CastFormat;

/// What \a buffer holds, in the format that was agreed upon. Its sizes and offsets come from another process, and what does
/// not lie in the memory that it names is left out. Any thread.
[[nodiscard]] CastFrame readCastBuffer(const spa_buffer &buffer, const CastFormat &format);

} // namespace vornic
