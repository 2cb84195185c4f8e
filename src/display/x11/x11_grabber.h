#pragma once

#include "display/band_store.h"
#include "display/x11/x11_damage.h"
#include "display/x11/x11_pixel_format.h"
#include "display/x11/x11_segment.h"

#include <QRect>

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace vornic {

class BitmapImage;
class ChangedBands;
class SharedPixels;
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
    /// Where the server writes pixels that need a conversion.
    struct Staging {
        std::shared_ptr<SharedPixels> pixels;
        std::unique_ptr<X11Segment> segment;
    };

    void startAnew(const QRect &onRoot, std::uint64_t layoutVersion);
    [[nodiscard]] bool update();
    [[nodiscard]] bool makeStaging();
    [[nodiscard]] std::shared_ptr<SharedPixels> newMemory(std::size_t size,
                                                          std::unique_ptr<X11Segment> *segment);
    [[nodiscard]] std::optional<BandStore::Fetched>
    fetch(int slot, const uchar *pixels, const std::vector<BandRun> &runs);
    [[nodiscard]] bool fetch(const X11Segment &segment, const std::vector<BandRun> &runs);
    void checkReports(const ChangedBands &reported, const std::vector<std::uint64_t> &before);

    [[nodiscard]] int rowsOf(const BandRun &run) const;
    [[nodiscard]] std::size_t serverOffset(int band) const;

    X11Connection &m_connection;
    X11Changes &m_changes;
    const X11PixelFormat m_format;
    std::mutex m_mutex;
    X11Damage m_damage;
    QRect m_onRoot;
    std::uint64_t m_layoutVersion = 0;
    std::array<std::unique_ptr<X11Segment>, BandStore::slotCount> m_segments; ///< null where there is staging
    BandStore m_store;
    Staging m_staging; ///< empty where the server's pixels are those of an image
    bool m_reportsAreComplete = true;
    double m_lastWholeFetch = 0; ///< seconds of the absolute clock
};

} // namespace vornic
