#pragma once

#include "app/cli/command_line.h"

namespace vornic {

/// Runs "vornic record": the same session as the window's, driven by flags. Needs a QCoreApplication on the
/// calling thread and runs its loop. The exit status: 0 the movie is complete, 1 it failed.
[[nodiscard]] int runRecordCommand(const CommandLine &line);

} // namespace vornic
