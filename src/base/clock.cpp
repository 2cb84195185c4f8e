#include "base/clock.h"

#include <chrono>

namespace vornic {

double absoluteTimeSeconds()
{
    const auto sinceBoot = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(sinceBoot).count();
}

} // namespace vornic
