#include "display/fake_display.h"

#include "display/bitmap_image.h"
#include "display/display_rectangle.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <optional>
#include <utility>

namespace vornic {

namespace {

constexpr QRgb grey = 0xff808080;
/// Pictures of this many rectangles are remembered, so that their bands keep their versions.
constexpr std::size_t rememberedRectangles = 8;

struct RememberedGrab {
    QRect rectangle;
    std::shared_ptr<const BitmapImage> image;
};

bool isSameBand(const BitmapImage &before, const QImage &now, int band)
{
    const int last = std::min(now.height(), (band + 1) * BitmapImage::bandHeight);
    const auto rowBytes = static_cast<std::size_t>(now.width()) * 4;
    for (int row = band * BitmapImage::bandHeight; row < last; ++row) {
        if (std::memcmp(before.bits() + row * before.bytesPerLine(), now.constScanLine(row), rowBytes) != 0)
            return false;
    }
    return true;
}

std::shared_ptr<const BitmapImage> imageAfter(const std::shared_ptr<const BitmapImage> &before,
                                              const QImage &now)
{
    if (!before)
        return bitmapImageFrom(now);
    std::vector<std::uint64_t> versions = before->bandVersions();
    for (int band = 0; band < bandCount(now.height()); ++band) {
        if (!isSameBand(*before, now, band))
            versions[static_cast<std::size_t>(band)] = newBandVersion();
    }
    return versions == before->bandVersions() ? before : bitmapImageFrom(now, std::move(versions));
}

} // namespace

struct FakeDisplay::State {
    QImage picture;
    QPoint pointer;
    std::shared_ptr<const CursorShape> shape;
    bool refusesGrabs = false;
    Report report;
    int grabs = 0;
    std::deque<RememberedGrab> remembered;

    std::shared_ptr<const BitmapImage> &rememberedImage(const QRect &rectangle)
    {
        const auto found = std::ranges::find(remembered, rectangle, &RememberedGrab::rectangle);
        if (found != remembered.end())
            return found->image;
        if (remembered.size() == rememberedRectangles)
            remembered.pop_front();
        return remembered.emplace_back(RememberedGrab { rectangle, nullptr }).image;
    }
};

FakeDisplay::FakeDisplay(QSize size)
    : m_state(std::make_shared<State>())
{
    m_state->picture = QImage(size, QImage::Format_RGB32);
    m_state->picture.fill(grey);
}

void FakeDisplay::setPicture(const QImage &picture)
{
    const std::lock_guard lock(m_mutex);
    m_state->picture = picture.convertToFormat(QImage::Format_RGB32);
}

void FakeDisplay::setPointerPosition(QPoint position)
{
    const std::lock_guard lock(m_mutex);
    m_state->pointer = position;
}

void FakeDisplay::setCursorShape(CursorShape shape)
{
    const std::lock_guard lock(m_mutex);
    m_state->shape = std::make_shared<const CursorShape>(std::move(shape));
}

void FakeDisplay::setRefusesGrabs(bool refuses)
{
    const std::lock_guard lock(m_mutex);
    m_state->refusesGrabs = refuses;
}

void FakeDisplay::setReport(const Report &report)
{
    const std::lock_guard lock(m_mutex);
    m_state->report = report;
}

int FakeDisplay::grabCount() const
{
    const std::lock_guard lock(m_mutex);
    return m_state->grabs;
}

void FakeDisplay::prepare(const QString & /*parentWindow*/, const AccessAnswer &answer)
{
    m_isClaimed = true;
    if (m_asksForAccess)
        m_accessAnswer = answer;
    else
        answer({});
}

void FakeDisplay::release()
{
    m_isClaimed = false;
    m_accessAnswer = nullptr;
}

void FakeDisplay::answerAccess(const DisplayAccess &access)
{
    if (const AccessAnswer answer = std::exchange(m_accessAnswer, nullptr))
        answer(access);
}

std::uint32_t FakeDisplay::mainDisplayId() const
{
    const std::lock_guard lock(m_mutex);
    return m_state->report.id;
}

QSize FakeDisplay::mainDisplaySize() const
{
    const std::lock_guard lock(m_mutex);
    return m_state->report.size.value_or(m_state->picture.size());
}

QPoint FakeDisplay::mainDisplayOrigin() const
{
    const std::lock_guard lock(m_mutex);
    return m_state->report.origin;
}

QString FakeDisplay::mainDisplayName() const
{
    const std::lock_guard lock(m_mutex);
    return m_state->report.name;
}

std::shared_ptr<const BitmapImage> FakeDisplay::grab(const QRect &rectangle)
{
    const std::lock_guard lock(m_mutex);
    ++m_state->grabs;
    const QRect visible = partOnDisplay(rectangle, m_state->picture.size());
    if (m_state->refusesGrabs || visible.isEmpty())
        return nullptr;
    auto &image = m_state->rememberedImage(visible);
    image = imageAfter(image, m_state->picture.copy(visible));
    return image;
}

QPoint FakeDisplay::pointerPosition()
{
    const std::lock_guard lock(m_mutex);
    return m_state->pointer;
}

std::shared_ptr<const CursorShape> FakeDisplay::cursorShape()
{
    const std::lock_guard lock(m_mutex);
    return m_state->shape;
}

} // namespace vornic
