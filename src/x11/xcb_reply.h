#pragma once

#include <cstdlib>
#include <memory>

namespace vornic {

struct XcbFree {
    void operator()(void *reply) const { std::free(reply); }
};

/// A reply, event or error of the X server, as the XCB library hands it over: memory that free() releases.
///
/// Made where a request is answered; may be handed to any thread. Null where there was no answer.
template<typename T>
using XcbReply = std::unique_ptr<T, XcbFree>;

} // namespace vornic
