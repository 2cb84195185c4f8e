#pragma once

#include <QString>

#include <memory>

namespace vornic {

class VNOption;

/// The user's options in the user defaults, under "com.kavlor.options". Main thread only.

/// The stored options; fresh ones when none are stored. Null, and logged, when what is stored cannot be
/// decoded: it is set aside under "com.kavlor.options.broken", so that the next call makes fresh ones.
[[nodiscard]] std::unique_ptr<VNOption> loadOptions();

/// Stores and writes to disk at once; false, and logged, where the disk does not take it.
bool storeOptions(const VNOption &options);

/// Why the options will not be kept, one sentence for the user; empty where they can be expected to be.
[[nodiscard]] QString whyOptionsCannotBeStored();

} // namespace vornic
