#pragma once

#include <QString>

#include <functional>

namespace vornic {

/// Writes one line to standard error, from any thread, without waiting for who reads it. A line equal to the one before
/// is only counted; the count is written before the next different line, or when the process ends.
void logMessage(const QString &message);

/// Gets every logged line, repeated ones too, on the thread that logged it.
using LogSink = std::function<void(const QString &)>;

/// Installs \a sink in place of standard error and returns the one before; an empty sink restores standard
/// error.
LogSink setLogSink(LogSink sink);

} // namespace vornic
