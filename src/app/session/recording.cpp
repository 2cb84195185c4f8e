#include "app/session/recording.h"

#include "base/PKTimebase.h"

#include <algorithm>
#include <cmath>

namespace vornic {

std::optional<std::int64_t> Recording::secondsLeft(std::int64_t timestamp) const
{
    if (!length)
        return std::nullopt;
    const double left = *length - static_cast<double>(timestamp) / PKTimebase;
    return std::max<std::int64_t>(0, std::llround(std::ceil(left)));
}

} // namespace vornic
