#pragma once

#include <memory>

namespace vornic {

class VNOption;

/// The user's options in the user defaults, under "com.kavlor.options". Main thread only.

/// The stored options; fresh ones when none are stored. Null, and logged, when what is stored cannot be
/// decoded: it is set aside under "com.kavlor.options.broken", so that the next call makes fresh ones.
[[nodiscard]] std::unique_ptr<VNOption> loadOptions();

/// Stores and writes to disk at once.
void storeOptions(const VNOption &options);

} // namespace vornic
