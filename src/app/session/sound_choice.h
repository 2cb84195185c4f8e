#pragma once

namespace vornic {

/// Which sounds a recording takes, and how loud each of them is; a plain value.
///
/// Made from the options or the command line before the recording, used by AudioInput at its start.
struct SoundChoice {
    bool input = true;       ///< the device that the list shows
    int inputPercent = 100;  ///< 0 to 150
    bool system = false;     ///< what the system plays
    int systemPercent = 100; ///< 0 to 150
    /// Each is a track of its own; where both are recorded.
    bool separate = false;

    /// The input's sound is taken as it is.
    [[nodiscard]] bool isPlain() const { return input && !system && inputPercent == 100; }
};

} // namespace vornic
