#pragma once

namespace vornic {

/// Runs "vornic devices": the audio input devices, one a line; the exit status. Needs a QCoreApplication.
[[nodiscard]] int runDevicesCommand();

} // namespace vornic
