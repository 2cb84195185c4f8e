#pragma once

#include <QString>

#include <cstdint>

namespace vornic {

/// A time in PKTimebase ticks as hours, minutes and seconds, "00:00:00"; hours are not limited to two digits.
[[nodiscard]] QString stringFromeTimestamp(std::int64_t timestamp);

/// "00:09:53 left".
[[nodiscard]] QString timeLeftText(std::int64_t seconds);
/// The same in words, the rougher the longer it is: "9 minutes left".
[[nodiscard]] QString timeLeftInWords(std::int64_t seconds);

/// A number of seconds as it was given: "0.5", "31536000".
[[nodiscard]] QString secondsText(double seconds);

/// "1:05"; minutes are not limited.
[[nodiscard]] QString minutesAndSeconds(double seconds);

} // namespace vornic
