#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace vornic {

/// How long each part of a recording takes to become a part of its movie, in proportion to the others.
///
/// Made by a MovieJob of what the spool knows without reading it: the time and the bytes of each record. These tell a
/// record without a change, most of which takes no time at all, from one with a few rows and from one that is all new.
/// A plain value.
class MovieWork
{
public:
    MovieWork() = default;
    /// For each record its timestamp in PKTimebase ticks, and its bytes in the spool; the oldest first.
    explicit MovieWork(const std::vector<std::pair<std::int64_t, std::uint64_t>> &records);

    /// From 0 to 1; nothing where there is no record.
    [[nodiscard]] std::optional<double> shareBefore(std::int64_t ticks) const;

private:
    struct Done {
        std::int64_t timestamp; ///< ticks
        double work;            ///< of all records before
    };
    std::vector<Done> m_done;
    double m_all = 0;
};

} // namespace vornic
