#pragma once

#include <QRectF>

#include <cstdint>
#include <memory>

namespace vornic {

class BitmapImage;
class DisplayBackend;

/// Takes pictures of the main display.
///
/// Made once by the application delegate. Width and height are those of that moment and stay so; pictures
/// show the display as it is when they are taken. May be called from any thread.
class VNCGDisplay
{
public:
    /// A missing display, or one without a height, is an assertion failure; if the handler returns, the
    /// object is made all the same and its reads give null.
    VNCGDisplay();
    ~VNCGDisplay();
    VNCGDisplay(const VNCGDisplay &) = delete;
    VNCGDisplay &operator=(const VNCGDisplay &) = delete;

    /// A new picture of the whole display in its size of now, or null where the display server gives none.
    [[nodiscard]] std::shared_ptr<const BitmapImage> readFullScreen() const;
    /// The same for a rectangle in screen coordinates (y up), truncated to whole pixels; the part of it that
    /// lies on the display, null when none does.
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
