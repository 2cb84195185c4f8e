#pragma once

#include <QByteArray>
#include <QRect>
#include <QSize>
#include <QString>

#include <array>
#include <cstdint>
#include <vector>

namespace vornic {
class PKVideoFrame2;
}

namespace vornic::testing {

/// One picture of even size, as 4:2:0 planes one behind the other, and when it appears. A plain value.
struct TimedPicture {
    std::int64_t ticks = 0;
    QByteArray planes;
    bool isKey = false; ///< a player can begin with it
};

/// What the ffmpeg program makes of a movie, in the order of the file.
[[nodiscard]] std::vector<TimedPicture> decodedMovie(const QString &movie);
/// What the encoder is given.
[[nodiscard]] TimedPicture pictureOf(const PKVideoFrame2 &frame);
/// The one that is shown at \a ticks; the first one where none is shown yet.
[[nodiscard]] const TimedPicture &shownAt(const std::vector<TimedPicture> &pictures, std::int64_t ticks);

/// The mean of the squared differences of luma between two pictures of \a size.
[[nodiscard]] double lumaError(const TimedPicture &a, const TimedPicture &b, QSize size);
/// Such a mean in decibels; 100 for none.
[[nodiscard]] double decibels(double error);
/// How many bytes of two pictures, of all planes, differ by how much. A plain value.
struct Differences {
    std::array<std::int64_t, 256> counts {}; ///< by the difference

    /// Of all bytes, those that differ by more than \a levels.
    [[nodiscard]] double partAbove(int levels) const;
};

/// Outside of \a left, which is even.
[[nodiscard]] Differences
differencesOutside(const TimedPicture &a, const TimedPicture &b, QSize size, const QRect &left);

} // namespace vornic::testing
