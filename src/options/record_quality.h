#pragma once

#include <cstdint>

namespace vornic {

/// The quality step of a recording. A stored number may be neither of the two and is kept as it is: compare with
/// the enumerator whose behaviour is the exception, never by a switch.
enum class RecordQuality : std::int32_t { High = 0, Medium = 1 };

} // namespace vornic
