#include "wayland/wayland_output.h"

#include <algorithm>

namespace vornic {

QSize WaylandOutput::pixels() const
{
    const bool isOnItsSide = transform % 2 != 0;
    return isOnItsSide ? mode.transposed() : mode;
}

double WaylandOutput::factor() const
{
    return logical.width() > 0 ? static_cast<double>(pixels().width()) / logical.width() : 1;
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
