#pragma once

#include <functional>

namespace vornic {

class CommandLineFrontEnd;
class RecordingSession;

/// Runs the main loop from \a begin until \a session has come to its end, and prints the movie that it has made. Signals
/// end it earlier. Needs a QCoreApplication on the calling thread. The exit status: 0 the movie is complete, 1 there is
/// none.
[[nodiscard]] int
runSession(RecordingSession &session, CommandLineFrontEnd &frontEnd, const std::function<void()> &begin);

} // namespace vornic
