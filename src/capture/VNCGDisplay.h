#pragma once

#include <QRectF>

#include <cstdint>
#include <memory>

namespace vornic {

class BitmapImage;
class DisplayBackend;

/// Takes pictures of the main display.
///
/// Made once by the application delegate, which measures width and height for good; pictures show the display
/// as it is when they are taken. May be called from any thread.
class VNCGDisplay
{
public:
    /// Where the display server tells no width, both are those of a picture of the display. A missing
    /// display, or one that has a width and no height, is an assertion failure; when the handler returns,
    /// the object is made all the same.
    VNCGDisplay();
    ~VNCGDisplay();
    VNCGDisplay(const VNCGDisplay &) = delete;
    VNCGDisplay &operator=(const VNCGDisplay &) = delete;

    /// A new picture of the whole display in its present size, or null where the display server gives none.
    [[nodiscard]] std::shared_ptr<const BitmapImage> readFullScreen() const;
    /// The same for the part of \a rect that lies on the display; null when none does. \a rect is in screen
    /// coordinates (y up); in display coordinates it is truncated to whole pixels.
    [[nodiscard]] std::shared_ptr<const BitmapImage> readPartScreen(const QRectF &rect) const;

    /// Pixels, as they were when this object was made.
    [[nodiscard]] std::int64_t displayWidth() const { return _width; }
    [[nodiscard]] std::int64_t displayHeight() const { return _height; }

private:
    void measure();

    std::shared_ptr<DisplayBackend> m_backend;
    std::uint32_t mMainDisplay = 0;
    std::int64_t _width = 0;
    std::int64_t _height = 0;
};

} // namespace vornic
