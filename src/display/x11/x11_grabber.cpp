#include "display/x11/x11_grabber.h"

#include "base/clock.h"
#include "base/log.h"
#include "base/parallel.h"
#include "display/bitmap_image.h"
#include "display/changed_bands.h"
#include "display/x11/x11_changes.h"
#include "x11/x11_connection.h"
#include "x11/xcb_reply.h"

#include <xcb/shm.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace vornic {

namespace {

/// One being written, one still shown, and one for a reader that is a picture late.
constexpr std::size_t maxSlots = 3;
/// How long a picture may rest on damage reports alone. A server or driver that draws past them would
/// otherwise leave a stale picture for good; a whole fetch costs a few milliseconds.
constexpr double wholeFetchPeriod = 2.0;

} // namespace

X11Grabber::X11Grabber(X11Connection &connection, X11Changes &changes, X11PixelFormat format)
    : m_connection(connection)
    , m_changes(changes)
    , m_format(std::move(format))
    , m_damage(connection, changes)
{
}

std::shared_ptr<const BitmapImage> X11Grabber::grab(const QRect &onRoot, std::uint64_t layoutVersion)
{
    const std::lock_guard lock(m_mutex);
    if (onRoot != m_onRoot || layoutVersion != m_layoutVersion)
        startAnew(onRoot, layoutVersion);
    if (!update()) {
        m_current = nullptr;
        return nullptr;
    }
    std::vector<std::uint64_t> versions(m_bands.size());
    std::ranges::transform(m_bands, versions.begin(), &Band::version);
    return imageOver(m_current->memory.pixels, m_onRoot.width(), m_onRoot.height(), std::move(versions));
}

void X11Grabber::startAnew(const QRect &onRoot, std::uint64_t layoutVersion)
{
    if (onRoot != m_onRoot) {
        m_bands.assign(static_cast<std::size_t>(bandCount(onRoot.height())), Band {});
        for (const auto &slot : m_slots)
            slot->versions.assign(m_bands.size(), 0);
    }
    m_onRoot = onRoot;
    m_layoutVersion = layoutVersion;
    m_current = nullptr;
}

/// Makes m_current show what the server shows; false where it refuses.
bool X11Grabber::update()
{
    ChangedBands reported(m_onRoot.height());
    m_damage.takeInto(reported, m_onRoot);
    ChangedBands changed = reported;
    const double now = absoluteTimeSeconds();
    const bool isCheck = m_current && m_reportsAreComplete && now - m_lastWholeFetch >= wholeFetchPeriod;
    if (isCheck || !m_current || !m_reportsAreComplete) {
        changed.addAll();
        m_lastWholeFetch = now;
    }
    if (changed.runs().empty())
        return true;
    Slot *const slot = makeStaging() ? slotToWrite() : nullptr;
    const std::vector<Band> before = isCheck ? m_bands : std::vector<Band>();
    if (!slot || !updateSlot(*slot, changed))
        return false;
    m_current = slot;
    if (isCheck)
        checkReports(reported, before);
    return true;
}

bool X11Grabber::updateSlot(Slot &slot, const ChangedBands &changed)
{
    bringUpToDate(slot, changed);
    const std::vector<BandRun> runs = changed.runs();
    if (!fetch(m_staging ? *m_staging : slot.memory, runs)) {
        std::ranges::fill(slot.versions, 0);
        return false;
    }
    // Hashing a whole picture takes about as long as fetching it.
    constexpr int minBandsPerThread = 8;
    for (const BandRun &run : runs)
        parallelRanges(run.count, minBandsPerThread, [&](int first, int count) {
            readBands(slot, { run.first + first, count });
        });
    return true;
}

/// The current slot where no image shows it, else another one without images; null without memory.
X11Grabber::Slot *X11Grabber::slotToWrite()
{
    const std::size_t size = imageOffset(static_cast<int>(m_bands.size()));
    const auto isUsable = [size](const Slot &slot) {
        return slot.memory.pixels->isFree() && slot.memory.pixels->size() >= size;
    };
    if (m_current && isUsable(*m_current))
        return m_current;
    const auto usable = std::ranges::find_if(m_slots, [&](const auto &slot) { return isUsable(*slot); });
    if (usable != m_slots.end())
        return usable->get();
    if (m_slots.size() >= maxSlots)
        m_slots.erase(
            std::ranges::find_if(m_slots, [this](const auto &slot) { return slot.get() != m_current; }));
    auto memory = newMemory(size, m_format.isDirect());
    if (!memory)
        return nullptr;
    auto slot
        = std::make_unique<Slot>(Slot { std::move(*memory), std::vector<std::uint64_t>(m_bands.size()) });
    return m_slots.emplace_back(std::move(slot)).get();
}

/// False without memory for pixels that need a conversion.
bool X11Grabber::makeStaging()
{
    const std::size_t size = serverOffset(static_cast<int>(m_bands.size()));
    if (!m_format.isDirect() && (!m_staging || m_staging->pixels->size() < size))
        m_staging = newMemory(size, true);
    return m_format.isDirect() || m_staging;
}

std::optional<X11Grabber::Memory> X11Grabber::newMemory(std::size_t size, bool forServer)
{
    Memory memory { SharedPixels::create(size), nullptr };
    if (memory.pixels && forServer)
        memory.segment = std::make_unique<X11Segment>(m_connection, *memory.pixels);
    if (memory.pixels && (!forServer || memory.segment->isAttached()))
        return memory;
    return std::nullopt;
}

/// Copies the bands that another slot has and \a slot lacks.
void X11Grabber::bringUpToDate(Slot &slot, const ChangedBands &exceptFor)
{
    for (int band = 0; band < exceptFor.count(); ++band) {
        const auto index = static_cast<std::size_t>(band);
        if (exceptFor.contains(band) || slot.versions[index] == m_bands[index].version)
            continue;
        const std::size_t offset = imageOffset(band);
        std::memcpy(slot.memory.pixels->data() + offset,
                    m_current->memory.pixels->data() + offset,
                    imageOffset(band + 1) - offset);
        slot.versions[index] = m_bands[index].version;
    }
}

/// Lets the server write \a runs into \a memory: all asked for at once, then awaited.
bool X11Grabber::fetch(const Memory &memory, const std::vector<BandRun> &runs)
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
                                            memory.segment->id(),
                                            static_cast<std::uint32_t>(serverOffset(run.first))));
    }
    bool isComplete = true;
    for (const auto &cookie : cookies) {
        const XcbReply<xcb_shm_get_image_reply_t> reply(xcb_shm_get_image_reply(connection, cookie, nullptr));
        isComplete = isComplete && reply;
    }
    return isComplete;
}

/// Damage is reported for what was drawn upon, not for what changed: a band whose pixels are as before keeps
/// its version.
void X11Grabber::readBands(Slot &slot, const BandRun &run)
{
    const Memory &fetched = m_staging ? *m_staging : slot.memory;
    for (int number = run.first; number < run.first + run.count; ++number) {
        Band &band = m_bands[static_cast<std::size_t>(number)];
        std::uint64_t &inSlot = slot.versions[static_cast<std::size_t>(number)];
        const uchar *const pixels = fetched.pixels->data() + serverOffset(number);
        const XXH128_hash_t hash = XXH3_128bits(pixels, serverOffset(number + 1) - serverOffset(number));
        if (band.version == 0 || XXH128_isEqual(hash, band.hash) == 0)
            band = { newBandVersion(), hash };
        if (m_staging && inSlot != band.version)
            m_format.convert(pixels,
                             slot.memory.pixels->data() + imageOffset(number),
                             m_onRoot.width(),
                             rowsOf({ number, 1 }));
        inSlot = band.version;
    }
}

/// After a whole fetch: what has changed unreported, although the reports of all that was drawn before the
/// fetch have arrived by now, shows that reports cannot be relied upon here.
void X11Grabber::checkReports(const ChangedBands &reported, const std::vector<Band> &before)
{
    bool isUnreported = false;
    for (int band = 0; band < reported.count(); ++band) {
        const auto index = static_cast<std::size_t>(band);
        isUnreported |= !reported.contains(band) && before[index].version != m_bands[index].version;
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

/// The same in an image.
std::size_t X11Grabber::imageOffset(int band) const
{
    const int row = std::min(band * BitmapImage::bandHeight, m_onRoot.height());
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(m_onRoot.width()) * 4;
}

} // namespace vornic
