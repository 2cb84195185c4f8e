#pragma once

namespace vornic {

/// Removes what programs that died have left and nobody can want: recordings whose movie is complete, such that hold
/// nothing, and half-written movies. Blocks while it reads the disk; any thread.
void cleanUpLeftBehind();

} // namespace vornic
