#pragma once

#include <vector>

namespace vornic {

/// Neighbouring bands of a picture.
struct BandRun {
    int first = 0;
    int count = 0;
};

/// The bands of a picture that must be fetched again.
///
/// Made by a grabber for one grab, on its stack.
class ChangedBands
{
public:
    /// None yet, of a picture of \a height rows.
    explicit ChangedBands(int height);

    void addAll();
    /// Adds the bands that hold any of \a count rows from \a first on; rows off the picture are left out.
    void addRows(int first, int rows);

    [[nodiscard]] int count() const { return static_cast<int>(m_changed.size()); }
    [[nodiscard]] bool contains(int band) const { return m_changed[static_cast<std::size_t>(band)]; }
    /// As few runs as hold all changed bands and no other, from the top.
    [[nodiscard]] std::vector<BandRun> runs() const;

private:
    std::vector<bool> m_changed;
};

} // namespace vornic
