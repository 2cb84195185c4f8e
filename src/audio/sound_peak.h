#pragma once

#include <cstdint>

namespace vornic {

struct AudioStreamBasicDescription;

/// The loudest of \a byteCount bytes of samples, on any channel, as a share of the loudest that there is; 0 is digital
/// silence. A pure function.
[[nodiscard]] double
peakOf(const void *bytes, std::uint32_t byteCount, const AudioStreamBasicDescription &format);

} // namespace vornic
