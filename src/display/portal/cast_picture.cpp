#include "display/portal/cast_picture.h"

#include "base/clock.h"
#include "display/bitmap_image.h"

#include <QTransform>

#include <algorithm>
#include <cstring>
#include <utility>

namespace vornic {

namespace {

/// How long a picture may rest on what the compositor tells of changes; one that leaves some out would otherwise leave a
/// stale picture for good.
constexpr double wholeCopyPeriod = 2.0;
/// More would take longer to look at than the picture.
constexpr std::size_t maxNotes = 256;

/// The blue and the red of each pixel change their places.
void copySwapped(const uchar *from, uchar *to, int width)
{
    for (int i = 0; i < width; ++i, from += 4, to += 4) {
        to[0] = from[2];
        to[1] = from[1];
        to[2] = from[0];
        to[3] = from[3];
    }
}

/// As the user sees it. \a pixels are turned.
QImage turnedRight(const CastPixels &pixels)
{
    constexpr int quarter = 90;
    const auto format
        = pixels.order == CastPixels::Order::Rgbx ? QImage::Format_RGBX8888 : QImage::Format_RGB32;
    const QImage view(
        pixels.firstRow, pixels.size.width(), pixels.size.height(), pixels.bytesPerLine, format);
    const QImage turned = view.transformed(QTransform().rotate(quarter * (pixels.transform % 4)));
    const bool isMirrored = pixels.transform >= 4;
    return (isMirrored ? turned.mirrored(true, false) : turned).convertToFormat(QImage::Format_RGB32);
}

QSize shownSize(const CastPixels &pixels)
{
    return pixels.transform % 2 == 0 ? pixels.size : pixels.size.transposed();
}

} // namespace

CastPicture::CastPicture(Now now)
    : m_now(now ? std::move(now) : Now(absoluteTimeSeconds))
{
}

void CastPicture::note(const CastFrame &frame)
{
    const std::lock_guard lock(m_mutex);
    if (frame.pointer)
        notePointer(*frame.pointer);
    noteDamage(frame);
}

void CastPicture::notePointer(const CastPointer &pointer)
{
    m_pointer.isVisible = pointer.isVisible;
    if (!pointer.isVisible)
        return;
    m_pointer.position = pointer.position;
    if (pointer.shape)
        m_pointer.shape = pointer.shape;
}

/// The changes of frames that are left out count, too; those of lost ones are not known.
void CastPicture::noteDamage(const CastFrame &frame)
{
    const bool isInSequence = frame.sequence == 0 || frame.sequence == m_lastSequence + 1;
    m_lastSequence = frame.sequence;
    m_damage.insert(m_damage.end(), frame.damage.begin(), frame.damage.end());
    if (!isInSequence || (frame.pixels && frame.damage.empty()) || m_damage.size() > maxNotes) {
        m_mayAllHaveChanged = true;
        m_damage.clear();
    }
}

void CastPicture::show(const CastPixels &pixels)
{
    const std::lock_guard lock(m_mutex);
    if (m_hasEnded)
        return;
    const ChangedBands changed = bandsToCopy(pixels);
    if (pixels.transform != 0) {
        m_picture = turnedRight(pixels);
    } else {
        if (m_picture.size() != pixels.size)
            m_picture = QImage(pixels.size, QImage::Format_RGB32);
        for (const BandRun &run : changed.runs())
            copyRows(pixels, run);
    }
    if (!m_changed || m_changed->count() != changed.count())
        m_changed = changed;
    for (const BandRun &run : changed.runs())
        m_changed->addRows(run.first * BitmapImage::bandHeight, run.count * BitmapImage::bandHeight);
}

/// All of a first picture, of one with another size, and every two seconds; else those that hold what was noted.
ChangedBands CastPicture::bandsToCopy(const CastPixels &pixels)
{
    const QSize size = shownSize(pixels);
    ChangedBands changed(size.height());
    const double now = m_now();
    if (m_mayAllHaveChanged || pixels.transform != 0 || m_picture.size() != size
        || now - m_lastWholeCopy >= wholeCopyPeriod) {
        changed.addAll();
        m_lastWholeCopy = now;
    }
    for (const QRect &damage : m_damage)
        changed.addRows(damage.top(), damage.height());
    m_damage.clear();
    m_mayAllHaveChanged = false;
    return changed;
}

void CastPicture::copyRows(const CastPixels &pixels, const BandRun &run)
{
    const int first = run.first * BitmapImage::bandHeight;
    const int end = std::min(first + run.count * BitmapImage::bandHeight, pixels.size.height());
    for (int row = first; row < end; ++row) {
        const uchar *const from = pixels.firstRow + row * pixels.bytesPerLine;
        uchar *const to = m_picture.scanLine(row);
        if (pixels.order == CastPixels::Order::Rgbx)
            copySwapped(from, to, pixels.size.width());
        else
            std::memcpy(to, from, static_cast<std::size_t>(pixels.size.width()) * 4);
    }
}

void CastPicture::end()
{
    const std::lock_guard lock(m_mutex);
    m_hasEnded = true;
    m_picture = QImage();
    m_changed.reset();
}

bool CastPicture::isThere() const
{
    const std::lock_guard lock(m_mutex);
    return !m_picture.isNull();
}

bool CastPicture::hasEnded() const
{
    const std::lock_guard lock(m_mutex);
    return m_hasEnded;
}

QSize CastPicture::size() const
{
    const std::lock_guard lock(m_mutex);
    return m_picture.size();
}

QPoint CastPicture::pointerPosition() const
{
    const std::lock_guard lock(m_mutex);
    return m_pointer.position;
}

std::shared_ptr<const CursorShape> CastPicture::cursorShape() const
{
    const std::lock_guard lock(m_mutex);
    return m_pointer.isVisible ? m_pointer.shape.value_or(nullptr) : nullptr;
}

CastChanges CastPicture::takeChanges()
{
    const std::lock_guard lock(m_mutex);
    if (!m_changed)
        return {};
    CastChanges changes { m_picture.size(), m_changed->runs() };
    m_changed.emplace(m_picture.height());
    return changes;
}

bool CastPicture::copyBands(QSize size, const QRect &part, const std::vector<BandRun> &runs, uchar *to) const
{
    const std::lock_guard lock(m_mutex);
    if (m_picture.size() != size)
        return false;
    const auto rowBytes = static_cast<std::size_t>(part.width()) * 4;
    for (const BandRun &run : runs) {
        const int first = run.first * BitmapImage::bandHeight;
        const int end = std::min(first + run.count * BitmapImage::bandHeight, part.height());
        for (int row = first; row < end; ++row)
            std::memcpy(to + static_cast<std::size_t>(row) * rowBytes,
                        m_picture.constScanLine(part.top() + row) + qsizetype { part.left() } * 4,
                        rowBytes);
    }
    return true;
}

} // namespace vornic
