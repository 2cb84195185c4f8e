#pragma once

#include <QColor>

#include <algorithm>
#include <cmath>

namespace vornic {

/// How bright \a color is for readers, 0 to 1.
inline double luminance(const QColor &color)
{
    const auto linear = [](double level) {
        return level <= 0.03928 ? level / 12.92 : std::pow((level + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

/// How much the lighter of two colours stands out against the other, as readers perceive it: 1 to 21.
inline double contrast(const QColor &one, const QColor &other)
{
    const double first = luminance(one);
    const double second = luminance(other);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

} // namespace vornic
