#include "wayland/wayland_output.h"

#include <algorithm>
#include <cmath>
#include <iterator>

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

std::optional<WaylandOutput> outputNamed(const std::vector<WaylandOutput> &outputs, const QString &name)
{
    const auto found = std::ranges::find(outputs, name, &WaylandOutput::name);
    return name.isEmpty() || found == outputs.end() ? std::nullopt : std::optional(*found);
}

std::optional<WaylandOutput>
outputShown(const std::vector<WaylandOutput> &outputs, QSize pixels, std::optional<QPoint> position)
{
    const auto liesThere
        = [position](const WaylandOutput &output) { return output.logical.topLeft() == position; };
    std::vector<WaylandOutput> alike;
    std::ranges::copy_if(outputs, std::back_inserter(alike), [pixels](const WaylandOutput &output) {
        return output.pixels() == pixels;
    });
    // Pictures may have another size than the monitor.
    const std::vector<WaylandOutput> &candidates = alike.empty() ? outputs : alike;
    if (const auto there = std::ranges::find_if(candidates, liesThere); there != candidates.end())
        return *there;
    return mainOutput(alike);
}

} // namespace vornic
