#include "capture/VNCGDisplay.h"

#include "base/assertion.h"
#include "display/bitmap_image.h"
#include "display/display_backend.h"
#include "geometry/screen_geometry.h"
#include "options/VNOption.h"

namespace vornic {

namespace {

void reportFailure(int line, const char *description)
{
    reportAssertionFailure(
        { QStringLiteral("init"), QStringLiteral("VNCGDisplay"), line, QString::fromLatin1(description) });
}

} // namespace

VNCGDisplay::VNCGDisplay()
    : m_backend(mainDisplay())
    , mMainDisplay(m_backend->mainDisplayId())
{
    if (mMainDisplay == 0)
        reportFailure(24, "Failed to find main display.");
    measure();
}

VNCGDisplay::~VNCGDisplay() = default;

void VNCGDisplay::measure()
{
    const QSize size = m_backend->mainDisplaySize();
    _width = size.width();
    if (_width < 1) {
        const std::shared_ptr<const BitmapImage> picture = readFullScreen();
        _width = picture ? picture->width() : 0;
        _height = picture ? picture->height() : 0;
        return;
    }
    _height = size.height();
    if (_height < 1)
        reportFailure(33, "Failed to get display height");
}

std::shared_ptr<const BitmapImage> VNCGDisplay::readFullScreen() const
{
    // The backend cuts this down to the display as it is at the moment of the grab.
    constexpr int unbounded = 1 << 16;
    return m_backend->grab(QRect(0, 0, unbounded, unbounded));
}

std::shared_ptr<const BitmapImage> VNCGDisplay::readPartScreen(const QRectF &rect) const
{
    return m_backend->grab(truncatedRect(VNOption::convertScreenRectToQuartz(rect)));
}

} // namespace vornic
