#pragma once

#include <QByteArrayView>

#include <cstdint>

namespace vornic {

/// XXH3, 64 bits: finds damage, not forgery. Any thread.
[[nodiscard]] std::uint64_t checksumOf(QByteArrayView bytes);

} // namespace vornic
