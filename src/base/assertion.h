#pragma once

#include <QString>

#include <functional>

namespace vornic {

/// A state that should be impossible, as it is reported to the assertion handler.
struct AssertionFailure {
    QString operation; ///< the operation that found it, for example "lz4CompressWithLevel:"
    QString file;      ///< the source file it belongs to, without its suffix
    int line = 0;      ///< a number that identifies the report for good; not the line of the call
    QString description;
};

using AssertionHandler = std::function<void(const AssertionFailure &)>;

/// Calls the handler, on the calling thread. The standard handler logs and returns: the program goes on.
void reportAssertionFailure(const AssertionFailure &failure);

/// Installs \a handler and returns the one before; an empty handler restores the standard one.
AssertionHandler setAssertionHandler(AssertionHandler handler);

} // namespace vornic
