#pragma once

#include "app/cli/command_line.h"

namespace vornic {

/// Runs "vornic recover": lists the unfinished recordings, deletes one, or makes its movie. Needs a QCoreApplication
/// on the calling thread, and no display. An exit_status.
[[nodiscard]] int runRecoverCommand(const CommandLine &line);

} // namespace vornic
