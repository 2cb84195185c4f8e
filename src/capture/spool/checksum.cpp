#include "capture/spool/checksum.h"

#include <xxhash.h>

namespace vornic {

std::uint64_t checksumOf(QByteArrayView bytes)
{
    return XXH3_64bits(bytes.data(), static_cast<std::size_t>(bytes.size()));
}

} // namespace vornic
