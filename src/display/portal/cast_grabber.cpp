#include "display/portal/cast_grabber.h"

#include "display/bitmap_image.h"
#include "display/changed_bands.h"
#include "display/display_rectangle.h"
#include "display/portal/cast_picture.h"
#include "display/shared_pixels.h"

#include <optional>

namespace vornic {

CastGrabber::CastGrabber(CastPicture &picture)
    : m_picture(picture)
    , m_store([](int /*slot*/, std::size_t size) { return SharedPixels::create(size); })
{
}

std::shared_ptr<const BitmapImage> CastGrabber::grab(const QRect &rectangle)
{
    const std::lock_guard lock(m_mutex);
    Outcome outcome = update(rectangle);
    while (outcome == Outcome::OtherSize)
        outcome = update(rectangle);
    if (outcome == Outcome::Done)
        return m_store.image();
    m_store.dropPicture(); // what has changed was taken in vain
    return nullptr;
}

/// Makes the store show what the cast shows there.
CastGrabber::Outcome CastGrabber::update(const QRect &rectangle)
{
    const CastChanges changes = m_picture.takeChanges();
    const QRect visible = partOnDisplay(rectangle, changes.size);
    if (visible.isEmpty())
        return Outcome::NoPicture;
    if (visible != m_visible)
        m_store.startAnew(visible.size());
    m_visible = visible;
    ChangedBands changed(visible.height());
    if (!m_store.hasPicture())
        changed.addAll();
    for (const BandRun &run : changes.bands)
        changed.addRows(run.first * BitmapImage::bandHeight - visible.top(),
                        run.count * BitmapImage::bandHeight);
    const std::vector<BandRun> runs = changed.runs();
    if (runs.empty())
        return Outcome::Done;
    const auto fetch = [&](int /*slot*/, uchar *pixels) -> std::optional<BandStore::Fetched> {
        if (!m_picture.copyBands(changes.size, visible, runs, pixels))
            return std::nullopt;
        return BandStore::Fetched { pixels, static_cast<std::size_t>(visible.width()) * 4, {} };
    };
    if (m_store.update(changed, fetch))
        return Outcome::Done;
    return m_picture.size() == changes.size ? Outcome::NoPicture : Outcome::OtherSize;
}

} // namespace vornic
