#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace vornic {

/// What a compositor says of one monitor; a plain value.
///
/// Made by WaylandOutputs; may be handed to any thread.
struct WaylandOutput {
    std::uint32_t id = 0; ///< as long as the monitor is there
    QString name;         ///< as the desktop calls it, "DP-1"; may be empty
    QSize mode;           ///< device pixels of the monitor itself, before it is turned
    int transform = 0;    ///< how it is turned: quarters counter-clockwise, and 4 more when mirrored
    int scale = 1;        ///< what programs that know no fractions are to draw with: the factor, rounded up
    QRect logical;        ///< where it lies among the others, in the compositor's own coordinates, y down

    /// Device pixels as the user sees them.
    [[nodiscard]] QSize pixels() const;
    /// Device pixels for each logical coordinate, as 1.25; 1 where that is not known.
    [[nodiscard]] double factor() const;

    friend bool operator==(const WaylandOutput &, const WaylandOutput &) = default;
};

/// The one that lies at the origin of the compositor's coordinates, else the first; nothing when there is none.
[[nodiscard]] std::optional<WaylandOutput> mainOutput(const std::vector<WaylandOutput> &outputs);
/// The one called \a name; nothing when there is none, or the name is empty.
[[nodiscard]] std::optional<WaylandOutput> outputNamed(const std::vector<WaylandOutput> &outputs,
                                                       const QString &name);
/// The one that a picture of \a pixels shows whose place in the compositor's coordinates is told to be \a position, if it
/// is: the size counts more, as some desktops tell the origin of every monitor. Nothing when it is none of them.
[[nodiscard]] std::optional<WaylandOutput>
outputShown(const std::vector<WaylandOutput> &outputs, QSize pixels, std::optional<QPoint> position);

} // namespace vornic
