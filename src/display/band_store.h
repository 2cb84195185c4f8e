#pragma once

#include <QSize>
#include <QtGlobal>

#include <xxhash.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace vornic {

class BitmapImage;
class ChangedBands;
class SharedPixels;
struct BandRun;

/// The newest picture of a rectangle, band by band: its pixels, in memory that its images share, and versions by which
/// bands are known that are as before.
///
/// Made by a grabber, which alone uses it, one thread at a time. What is written into it may be more than what has
/// changed: a band whose pixels are as before keeps its version.
class BandStore
{
public:
    /// One being written, one still shown, and one for a reader that is a picture late.
    static constexpr int slotCount = 3;

    /// Memory of \a size bytes for the slot \a slot, in place of what it has had; null where there is none.
    using NewMemory = std::function<std::shared_ptr<SharedPixels>(int slot, std::size_t size)>;

    /// Where a picture lies of which some bands were fetched.
    struct Fetched {
        const uchar *pixels = nullptr; ///< of the first row
        std::size_t bytesPerLine = 0;
        /// Puts a band in its place in the slot; empty where it was fetched to there.
        std::function<void(const uchar *from, uchar *to, int rows)> convert;
    };
    /// Fetches the changed bands for a slot, whose picture begins at \a pixels; nothing where that fails.
    using Fetch = std::function<std::optional<Fetched>(int slot, uchar *pixels)>;

    explicit BandStore(NewMemory newMemory);

    /// Pictures have \a size pixels from now on, and nothing is known of them.
    void startAnew(QSize size);
    /// The next update must be of all bands; those that are as before keep their versions all the same.
    void dropPicture() { m_current = nullptr; }
    [[nodiscard]] bool hasPicture() const { return m_current != nullptr; }
    /// Of each band; 0 where nothing is known of it.
    [[nodiscard]] std::vector<std::uint64_t> versions() const;

    /// Makes the picture new in the bands \a changed, which \a fetch gets. False without memory and where \a fetch
    /// fails; there is no picture then.
    [[nodiscard]] bool update(const ChangedBands &changed, const Fetch &fetch);
    /// The picture, of which there must be one. It stays as it is, whatever is updated.
    [[nodiscard]] std::shared_ptr<const BitmapImage> image() const;

private:
    /// Memory for a whole picture, and the version of the band that stands in each place; 0 for none.
    struct Slot {
        std::shared_ptr<SharedPixels> pixels;
        std::vector<std::uint64_t> versions;
    };
    /// What is known of one band of the current picture.
    struct Band {
        std::uint64_t version = 0;
        XXH128_hash_t hash {};
    };

    [[nodiscard]] bool updateSlot(Slot &slot, const ChangedBands &changed, const Fetch &fetch);
    [[nodiscard]] Slot *slotToWrite();
    [[nodiscard]] Slot *slotToReplace();
    [[nodiscard]] int numberOf(const Slot &slot) const;
    void bringUpToDate(Slot &slot, const ChangedBands &exceptFor);
    void readBands(Slot &slot, const Fetched &fetched, const BandRun &run);
    [[nodiscard]] int firstRow(int band) const;
    [[nodiscard]] std::size_t offset(int band) const;

    const NewMemory m_newMemory;
    QSize m_size { 0, 0 };
    std::vector<Band> m_bands;
    std::array<Slot, slotCount> m_slots;
    Slot *m_current = nullptr; ///< shows m_bands; null: there is no picture
};

} // namespace vornic
