#pragma once

#include <functional>

namespace vornic {

class CommandLineFrontEnd;
class RecordingSession;

/// Runs the main loop from \a begin until \a session has come to its end, and prints the movie that it has made. Signals
/// end it earlier. Needs a QCoreApplication on the calling thread. An exit_status: done, failed, or incomplete where the
/// movie could not be told of.
[[nodiscard]] int
runSession(RecordingSession &session, CommandLineFrontEnd &frontEnd, const std::function<void()> &begin);

} // namespace vornic
