#include "display/changed_bands.h"

#include "display/bitmap_image.h"

#include <algorithm>

namespace vornic {

ChangedBands::ChangedBands(int height)
    : m_changed(static_cast<std::size_t>(bandCount(height)))
{
}

void ChangedBands::addAll()
{
    m_changed.assign(m_changed.size(), true);
}

void ChangedBands::addRows(int first, int rows)
{
    if (first < 0) {
        rows += first;
        first = 0;
    }
    if (rows <= 0)
        return;
    const int last = std::min((first + rows - 1) / BitmapImage::bandHeight, count() - 1);
    for (int band = first / BitmapImage::bandHeight; band <= last; ++band)
        m_changed[static_cast<std::size_t>(band)] = true;
}

std::vector<BandRun> ChangedBands::runs() const
{
    std::vector<BandRun> runs;
    for (int band = 0; band < count(); ++band) {
        if (!contains(band))
            continue;
        if (!runs.empty() && runs.back().first + runs.back().count == band)
            ++runs.back().count;
        else
            runs.push_back({ band, 1 });
    }
    return runs;
}

} // namespace vornic
