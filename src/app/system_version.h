#pragma once

class QString;

namespace vornic {

/// Whether the version \a version ("12", "12.4") of an operating system is above \a major, or that and above \a minor
/// in its second number; false where it cannot be read.
[[nodiscard]] bool isVersionAbove(const QString &version, int major, int minor);

} // namespace vornic
