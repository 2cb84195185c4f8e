#pragma once

#include <QByteArray>

namespace vornic {

/// Gives each of the standard descriptors that the process was started without a place that nothing can be read from
/// or written to: the next file that is opened would be taken for it otherwise. First of all in main().
void occupyClosedStandardDescriptors();

/// Writes all of \a text to standard output, however long whoever reads it takes. False, with errno set, where that
/// cannot be done.
[[nodiscard]] bool writeToStandardOutput(const QByteArray &text);

} // namespace vornic
