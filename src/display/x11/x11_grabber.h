#pragma once

#include "display/shared_pixels.h"
#include "display/x11/x11_damage.h"
#include "display/x11/x11_pixel_format.h"
#include "display/x11/x11_segment.h"

#include <QRect>

#include <xxhash.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace vornic {

class ChangedBands;
class X11Changes;
class X11Connection;
struct BandRun;

/// Takes pictures of a rectangle of the X server's root window through shared memory.
///
/// Made by X11Display; used from any thread, one at a time under its lock. It keeps the picture of the last
/// rectangle and fetches only the bands that the server reports as drawn since, into the same memory when no
/// image shows it any more, else into other memory that is brought up to date first.
class X11Grabber
{
public:
    /// Borrows connection and changes for life.
    X11Grabber(X11Connection &connection, X11Changes &changes, X11PixelFormat format);

    /// \a onRoot in root coordinates, inside the root window; \a layoutVersion differs from the last one when
    /// the server's screen has been arranged anew. Null when the server refuses.
    [[nodiscard]] std::shared_ptr<const BitmapImage> grab(const QRect &onRoot, std::uint64_t layoutVersion);

private:
    /// Memory that the server can write to.
    struct Memory {
        std::shared_ptr<SharedPixels> pixels;
        std::unique_ptr<X11Segment> segment; ///< null where the server need not write to it
    };
    /// Memory for a whole picture, and the version of the band that stands in each place; 0 for none.
    struct Slot {
        Memory memory;
        std::vector<std::uint64_t> versions;
    };
    /// What is known of one band of the current picture.
    struct Band {
        std::uint64_t version = 0;
        XXH128_hash_t hash {};
    };

    void startAnew(const QRect &onRoot, std::uint64_t layoutVersion);
    [[nodiscard]] bool update();
    [[nodiscard]] bool updateSlot(Slot &slot, const ChangedBands &changed);
    [[nodiscard]] bool makeStaging();
    [[nodiscard]] Slot *slotToWrite();
    [[nodiscard]] std::optional<Memory> newMemory(std::size_t size, bool forServer);
    void bringUpToDate(Slot &slot, const ChangedBands &exceptFor);
    [[nodiscard]] bool fetch(const Memory &memory, const std::vector<BandRun> &runs);
    void readBands(Slot &slot, const BandRun &run);
    void checkReports(const ChangedBands &reported, const std::vector<Band> &before);

    [[nodiscard]] int rowsOf(const BandRun &run) const;
    [[nodiscard]] std::size_t serverOffset(int band) const;
    [[nodiscard]] std::size_t imageOffset(int band) const;

    X11Connection &m_connection;
    X11Changes &m_changes;
    const X11PixelFormat m_format;
    std::mutex m_mutex;
    X11Damage m_damage;
    QRect m_onRoot;
    std::uint64_t m_layoutVersion = 0;
    std::vector<Band> m_bands;
    std::vector<std::unique_ptr<Slot>> m_slots;
    Slot *m_current = nullptr;       ///< shows m_bands; null: the whole picture must be fetched
    std::optional<Memory> m_staging; ///< where the server writes pixels that need a conversion
    bool m_reportsAreComplete = true;
    double m_lastWholeFetch = 0; ///< seconds of the absolute clock
};

} // namespace vornic
