#pragma once

#include <cstdint>
#include <deque>
#include <optional>

namespace vornic {

/// What the volumes of a recording have free; a plain value.
struct DiskSpace {
    std::optional<std::uint64_t> spoolFree; ///< bytes; nothing when it cannot be asked
    std::optional<std::uint64_t> movieFree; ///< bytes, where the movie will be
    bool isOneVolume = false;               ///< spool and movie take their space from the same
};

/// How long a recording can go on, at the rate of its last half minute.
///
/// Owned by DiskWatch, which adds a sample about once a second; asks nobody for anything, knows no clock. The spool
/// grows as it did; the movie, which comes after it, has at most its bit rate and at most the bytes of the spool. Where
/// both take their space from one volume, the recording ends while there is room for its movie. What
/// other programs take counts once they have taken it for the whole half minute: one file that is copied is no rate.
class DiskForecast
{
public:
    struct Sample {
        double seconds = 0; ///< of a clock that does not jump; later than that of the sample before
        std::uint64_t spooledBytes = 0; ///< since the start of the recording
        double movieSeconds = 0;        ///< how long the movie would be
        double movieBytesPerSecond = 0; ///< at most
        DiskSpace space;
    };
    enum class Limit { Spool, Movie };
    struct Room {
        double seconds = 0; ///< infinite where nothing grows
        Limit limit = Limit::Spool;
    };

    /// \a keptFree: when fewer bytes, beside those of the movie, are free on the spool's volume the recording ends.
    explicit DiskForecast(std::uint64_t keptFree)
        : m_keptFree(static_cast<double>(keptFree))
    {
    }

    void add(const Sample &sample);
    /// As of the newest sample; nothing in the first seconds, or where no volume could be asked.
    [[nodiscard]] std::optional<Room> room() const;
    /// Bytes that the movie of what is recorded will take from the spool's volume, as of the newest sample; 0 where
    /// it goes to another volume.
    [[nodiscard]] std::uint64_t movieBytesOnSpoolVolume() const;

private:
    using Free = std::optional<std::uint64_t> DiskSpace::*;

    [[nodiscard]] double spoolRate() const;
    [[nodiscard]] double othersRate(Free volume) const;
    [[nodiscard]] double spoolSeconds() const;
    [[nodiscard]] double secondsWithMovie(double bytes, double othersRate) const;
    [[nodiscard]] double movieSeconds() const;

    double m_keptFree;
    std::deque<Sample> m_samples; ///< oldest first: those of the window, and the one at its beginning
};

} // namespace vornic
