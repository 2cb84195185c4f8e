#pragma once

namespace vornic {

/// Runs "vornic devices": the audio input devices, one a line; an exit_status. Needs a QCoreApplication.
[[nodiscard]] int runDevicesCommand();

} // namespace vornic
