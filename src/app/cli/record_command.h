#pragma once

#include "app/cli/command_line.h"

namespace vornic {

/// Runs "vornic record": the same session as the window's, driven by flags. Needs a QCoreApplication on the
/// calling thread and runs its loop. An exit_status.
[[nodiscard]] int runRecordCommand(const CommandLine &line);

} // namespace vornic
