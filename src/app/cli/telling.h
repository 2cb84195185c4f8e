#pragma once

#include "base/error_stream.h"

#include <QString>

namespace vornic {

/// A line for the person at the terminal.
inline void tell(const QString &line)
{
    standardError().writeLine(line);
}

/// The same for a sentence on something that went wrong, or may be about to.
inline void tellError(const QString &sentence)
{
    tell(QStringLiteral("vornic: ") + sentence);
}

} // namespace vornic
