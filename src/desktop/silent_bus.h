#pragma once

namespace vornic {

/// A message bus that does not answer within two seconds is none for this process, nor for the toolkit in it, which would
/// wait for it much longer, and with the main thread. Called by main before there is an application object, or another
/// thread.
void disregardSilentBuses();

/// Asked before the toolkit is asked for what it asks the session bus for. Waits for two seconds at most; true where there
/// is no bus.
[[nodiscard]] bool sessionBusAnswers();

} // namespace vornic
