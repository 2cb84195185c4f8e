#include "wayland/wayland_output.h"

#include <algorithm>
#include <cmath>

namespace vornic {

QSize WaylandOutput::pixels() const
{
    const bool isOnItsSide = transform % 2 != 0;
    return isOnItsSide ? mode.transposed() : mode;
}

double WaylandOutput::factor() const
{
    if (logical.isEmpty())
        return 1;
    // The logical size is whole, so that the quotient is a little off. Factors are told in steps of this size.
    constexpr double steps = 120;
    return std::round(steps * pixels().width() / logical.width()) / steps;
}

std::optional<WaylandOutput> mainOutput(const std::vector<WaylandOutput> &outputs)
{
    if (outputs.empty())
        return std::nullopt;
    const auto atOrigin = std::ranges::find_if(
        outputs, [](const WaylandOutput &output) { return output.logical.topLeft() == QPoint(0, 0); });
    return atOrigin == outputs.end() ? outputs.front() : *atOrigin;
}

} // namespace vornic
