#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace vornic {

/// What a recording takes on disk, and how long it can go on; a plain value.
struct RecordingRoom {
    std::uint64_t spooledBytes = 0;
    std::optional<double> seconds; ///< at the rate of the last half minute; infinite where nothing grows
    bool isForMovie = false;       ///< what ends it is the room for its movie, not that for itself
    QString folder;                ///< on the volume that is full first
};

} // namespace vornic
