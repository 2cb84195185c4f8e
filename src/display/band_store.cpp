#include "display/band_store.h"

#include "base/parallel.h"
#include "display/bitmap_image.h"
#include "display/changed_bands.h"
#include "display/shared_pixels.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace vornic {

BandStore::BandStore(NewMemory newMemory)
    : m_newMemory(std::move(newMemory))
{
}

void BandStore::startAnew(QSize size)
{
    m_size = size;
    m_bands.assign(static_cast<std::size_t>(bandCount(size.height())), Band {});
    for (Slot &slot : m_slots)
        slot.versions.assign(m_bands.size(), 0);
    m_current = nullptr;
}

std::vector<std::uint64_t> BandStore::versions() const
{
    std::vector<std::uint64_t> versions(m_bands.size());
    std::ranges::transform(m_bands, versions.begin(), &Band::version);
    return versions;
}

std::shared_ptr<const BitmapImage> BandStore::image() const
{
    return imageOver(m_current->pixels, m_size.width(), m_size.height(), versions());
}

bool BandStore::update(const ChangedBands &changed, const Fetch &fetch)
{
    Slot *const slot = slotToWrite();
    m_current = slot && updateSlot(*slot, changed, fetch) ? slot : nullptr;
    return hasPicture();
}

bool BandStore::updateSlot(Slot &slot, const ChangedBands &changed, const Fetch &fetch)
{
    bringUpToDate(slot, changed);
    const std::optional<Fetched> fetched = fetch(numberOf(slot), slot.pixels->data());
    if (!fetched) {
        std::ranges::fill(slot.versions, 0);
        return false;
    }
    // Hashing a whole picture takes about as long as fetching it.
    constexpr int minBandsPerThread = 8;
    for (const BandRun &run : changed.runs())
        parallelRanges(run.count, minBandsPerThread, [&](int first, int count) {
            readBands(slot, *fetched, { run.first + first, count });
        });
    return true;
}

/// The current slot where no image shows it, else another one without images; null without memory.
BandStore::Slot *BandStore::slotToWrite()
{
    const std::size_t size = offset(static_cast<int>(m_bands.size()));
    const auto isUsable = [size](const Slot &slot) {
        return slot.pixels && slot.pixels->isFree() && slot.pixels->size() >= size;
    };
    if (m_current && isUsable(*m_current))
        return m_current;
    if (const auto usable = std::ranges::find_if(m_slots, isUsable); usable != m_slots.end())
        return usable;
    Slot *const slot = slotToReplace();
    slot->pixels = nullptr;
    slot->pixels = m_newMemory(numberOf(*slot), size);
    slot->versions.assign(m_bands.size(), 0);
    return slot->pixels ? slot : nullptr;
}

/// An empty one, else one that is not shown by m_bands; images keep what they show.
BandStore::Slot *BandStore::slotToReplace()
{
    const auto empty = std::ranges::find(m_slots, nullptr, &Slot::pixels);
    return empty != m_slots.end()
        ? empty
        : std::ranges::find_if(m_slots, [this](const Slot &slot) { return &slot != m_current; });
}

int BandStore::numberOf(const Slot &slot) const
{
    return static_cast<int>(&slot - m_slots.data());
}

/// Copies the bands that the current slot has and \a slot lacks.
void BandStore::bringUpToDate(Slot &slot, const ChangedBands &exceptFor)
{
    for (int band = 0; band < exceptFor.count(); ++band) {
        const auto index = static_cast<std::size_t>(band);
        if (exceptFor.contains(band) || slot.versions[index] == m_bands[index].version)
            continue;
        std::memcpy(slot.pixels->data() + offset(band),
                    m_current->pixels->data() + offset(band),
                    offset(band + 1) - offset(band));
        slot.versions[index] = m_bands[index].version;
    }
}

void BandStore::readBands(Slot &slot, const Fetched &fetched, const BandRun &run)
{
    for (int number = run.first; number < run.first + run.count; ++number) {
        Band &band = m_bands[static_cast<std::size_t>(number)];
        std::uint64_t &inSlot = slot.versions[static_cast<std::size_t>(number)];
        const int rows = firstRow(number + 1) - firstRow(number);
        const uchar *const pixels
            = fetched.pixels + static_cast<std::size_t>(firstRow(number)) * fetched.bytesPerLine;
        const XXH128_hash_t hash
            = XXH3_128bits(pixels, static_cast<std::size_t>(rows) * fetched.bytesPerLine);
        if (band.version == 0 || XXH128_isEqual(hash, band.hash) == 0)
            band = { newBandVersion(), hash };
        if (fetched.convert && inSlot != band.version)
            fetched.convert(pixels, slot.pixels->data() + offset(number), rows);
        inSlot = band.version;
    }
}

/// For the band after the last one, the picture's height.
int BandStore::firstRow(int band) const
{
    return std::min(band * BitmapImage::bandHeight, m_size.height());
}

/// Where a band begins in a slot; for the band after the last one, where the picture ends.
std::size_t BandStore::offset(int band) const
{
    return static_cast<std::size_t>(firstRow(band)) * static_cast<std::size_t>(m_size.width()) * 4;
}

} // namespace vornic
