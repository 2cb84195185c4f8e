#include "display/x11/x11_grabber.h"

#include "base/clock.h"
#include "base/log.h"
#include "display/bitmap_image.h"
#include "display/changed_bands.h"
#include "display/shared_pixels.h"
#include "display/x11/x11_changes.h"
#include "x11/x11_connection.h"
#include "x11/xcb_reply.h"

#include <xcb/shm.h>

#include <algorithm>
#include <utility>

namespace vornic {

namespace {

/// How long a picture may rest on damage reports alone. A server or driver that draws past them would
/// otherwise leave a stale picture for good; a whole fetch costs a few milliseconds.
constexpr double wholeFetchPeriod = 2.0;

} // namespace

X11Grabber::X11Grabber(X11Connection &connection, X11Changes &changes, X11PixelFormat format)
    : m_connection(connection)
    , m_changes(changes)
    , m_format(std::move(format))
    , m_damage(connection, changes)
    , m_store([this](int slot, std::size_t size) {
        return newMemory(size, m_format.isDirect() ? &m_segments[static_cast<std::size_t>(slot)] : nullptr);
    })
{
}

std::shared_ptr<const BitmapImage> X11Grabber::grab(const QRect &onRoot, std::uint64_t layoutVersion)
{
    const std::lock_guard lock(m_mutex);
    if (onRoot != m_onRoot || layoutVersion != m_layoutVersion)
        startAnew(onRoot, layoutVersion);
    return update() ? m_store.image() : nullptr;
}

void X11Grabber::startAnew(const QRect &onRoot, std::uint64_t layoutVersion)
{
    if (onRoot != m_onRoot)
        m_store.startAnew(onRoot.size());
    else
        m_store.dropPicture();
    m_onRoot = onRoot;
    m_layoutVersion = layoutVersion;
}

/// Makes the picture show what the server shows; false where it refuses.
bool X11Grabber::update()
{
    ChangedBands reported(m_onRoot.height());
    m_damage.takeInto(reported, m_onRoot);
    ChangedBands changed = reported;
    const double now = absoluteTimeSeconds();
    const bool isCheck
        = m_store.hasPicture() && m_reportsAreComplete && now - m_lastWholeFetch >= wholeFetchPeriod;
    if (isCheck || !m_store.hasPicture() || !m_reportsAreComplete) {
        changed.addAll();
        m_lastWholeFetch = now;
    }
    const std::vector<BandRun> runs = changed.runs();
    if (runs.empty())
        return true;
    const auto before = isCheck ? m_store.versions() : std::vector<std::uint64_t>();
    const auto fetchRuns = [&](int slot, const uchar *pixels) { return fetch(slot, pixels, runs); };
    if (!m_store.update(changed, fetchRuns))
        return false;
    if (isCheck)
        checkReports(reported, before);
    return true;
}

/// Memory that the server can write to by \a segment, which is made for it; where that is null, it need not.
std::shared_ptr<SharedPixels> X11Grabber::newMemory(std::size_t size, std::unique_ptr<X11Segment> *segment)
{
    auto pixels = SharedPixels::create(size);
    if (!pixels || !segment)
        return pixels;
    *segment = std::make_unique<X11Segment>(m_connection, *pixels);
    return (*segment)->isAttached() ? pixels : nullptr;
}

/// False without memory.
bool X11Grabber::makeStaging()
{
    const std::size_t size = serverOffset(bandCount(m_onRoot.height()));
    if (!m_staging.pixels || m_staging.pixels->size() < size)
        m_staging.pixels = newMemory(size, &m_staging.segment);
    return m_staging.pixels != nullptr;
}

/// Into \a slot, whose picture begins at \a pixels, or elsewhere where pixels need a conversion.
std::optional<BandStore::Fetched>
X11Grabber::fetch(int slot, const uchar *pixels, const std::vector<BandRun> &runs)
{
    BandStore::Fetched fetched { pixels,
                                 static_cast<std::size_t>(m_format.bytesPerLine(m_onRoot.width())),
                                 {} };
    const X11Segment *segment = m_segments[static_cast<std::size_t>(slot)].get();
    if (!m_format.isDirect()) {
        if (!makeStaging())
            return std::nullopt;
        segment = m_staging.segment.get();
        fetched.pixels = m_staging.pixels->data();
        fetched.convert = [this](const uchar *from, uchar *to, int rows) {
            m_format.convert(from, to, m_onRoot.width(), rows);
        };
    }
    return fetch(*segment, runs) ? std::optional(std::move(fetched)) : std::nullopt;
}

/// Lets the server write \a runs by \a segment: all asked for at once, then awaited.
bool X11Grabber::fetch(const X11Segment &segment, const std::vector<BandRun> &runs)
{
    xcb_connection_t *const connection = m_connection.get();
    std::vector<xcb_shm_get_image_cookie_t> cookies;
    cookies.reserve(runs.size());
    for (const BandRun &run : runs) {
        const int firstRow = run.first * BitmapImage::bandHeight;
        cookies.push_back(xcb_shm_get_image(connection,
                                            m_connection.root(),
                                            static_cast<std::int16_t>(m_onRoot.x()),
                                            static_cast<std::int16_t>(m_onRoot.y() + firstRow),
                                            static_cast<std::uint16_t>(m_onRoot.width()),
                                            static_cast<std::uint16_t>(rowsOf(run)),
                                            ~std::uint32_t { 0 },
                                            XCB_IMAGE_FORMAT_Z_PIXMAP,
                                            segment.id(),
                                            static_cast<std::uint32_t>(serverOffset(run.first))));
    }
    bool isComplete = true;
    for (const auto &cookie : cookies) {
        const XcbReply<xcb_shm_get_image_reply_t> reply(xcb_shm_get_image_reply(connection, cookie, nullptr));
        isComplete = isComplete && reply;
    }
    return isComplete;
}

/// After a whole fetch: what has changed unreported, although the reports of all that was drawn before the
/// fetch have arrived by now, shows that reports cannot be relied upon here.
void X11Grabber::checkReports(const ChangedBands &reported, const std::vector<std::uint64_t> &before)
{
    const std::vector<std::uint64_t> now = m_store.versions();
    bool isUnreported = false;
    for (int band = 0; band < reported.count(); ++band) {
        const auto index = static_cast<std::size_t>(band);
        isUnreported |= !reported.contains(band) && before[index] != now[index];
    }
    if (!isUnreported || m_changes.isTold(X11Change::Picture))
        return;
    m_reportsAreComplete = false;
    logMessage(
        QStringLiteral("The X server does not report all that it draws; every picture is read as a whole."));
}

int X11Grabber::rowsOf(const BandRun &run) const
{
    const int first = run.first * BitmapImage::bandHeight;
    return std::min(run.count * BitmapImage::bandHeight, m_onRoot.height() - first);
}

/// Where a band begins in what the server writes; for the band after the last one, where the picture ends.
std::size_t X11Grabber::serverOffset(int band) const
{
    const int row = std::min(band * BitmapImage::bandHeight, m_onRoot.height());
    return static_cast<std::size_t>(row * m_format.bytesPerLine(m_onRoot.width()));
}

} // namespace vornic
