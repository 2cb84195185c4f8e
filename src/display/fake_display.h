#pragma once

#include "display/display_backend.h"

#include <mutex>

namespace vornic {

/// A display without a server: it shows the picture, pointer and shape that it was given last.
///
/// For tests, and chosen only by VORNIC_DISPLAY=fake. Setters and the backend's functions from any thread.
class FakeDisplay final : public DisplayBackend
{
public:
    /// A grey display of \a size.
    explicit FakeDisplay(QSize size);

    /// Shows \a picture from the next grab on; the display takes its size. Bands that hold the same pixels
    /// as before keep their version.
    void setPicture(const QImage &picture);
    void setPointerPosition(QPoint position);
    void setCursorShape(CursorShape shape);
    /// True lets every grab fail from now on.
    void setRefusesGrabs(bool refuses);
    /// What is told instead of the real size, which grabs keep (a display that cannot say its size).
    void setReportedSize(QSize size);
    void setMainDisplayId(std::uint32_t id);
    [[nodiscard]] int grabCount() const;

    [[nodiscard]] std::uint32_t mainDisplayId() const override;
    [[nodiscard]] QSize mainDisplaySize() const override;
    [[nodiscard]] std::shared_ptr<const BitmapImage> grab(const QRect &rectangle) override;
    [[nodiscard]] QPoint pointerPosition() override;
    [[nodiscard]] std::shared_ptr<const CursorShape> cursorShape() override;

private:
    struct State;
    mutable std::mutex m_mutex;
    std::shared_ptr<State> m_state;
};

} // namespace vornic
