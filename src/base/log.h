#pragma once

#include <QString>

#include <functional>

namespace vornic {

/// Writes one line to the log (standard error, or where the desktop collects it), from any thread. A
/// line that comes again before any other is not written again.
void logMessage(const QString &message);

/// Receives every logged line, on the thread that logged it.
using LogSink = std::function<void(const QString &)>;

/// Puts \a sink in place of the standard one and returns the one before; an empty sink restores the standard.
LogSink setLogSink(LogSink sink);

} // namespace vornic
