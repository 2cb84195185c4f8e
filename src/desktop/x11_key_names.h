#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace vornic {

/// A key as the X server knows it.
struct X11Key {
    std::uint32_t symbol = 0;    ///< the keysym, without Shift
    std::uint16_t modifiers = 0; ///< bits of the core protocol's modifier mask
};

/// The key that \a portableText names, as QKeySequence writes it portably; nothing for a sequence of several, for
/// modifiers alone and for a key that has no symbol. Pure.
[[nodiscard]] std::optional<X11Key> x11Key(const QString &portableText);

} // namespace vornic
