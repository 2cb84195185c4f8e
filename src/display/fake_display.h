#pragma once

#include "display/display_backend.h"

#include <cstdint>
#include <mutex>
#include <optional>

namespace vornic {

/// A display without a server: it shows the picture, pointer and shape that it was given last.
///
/// For tests, and chosen only by VORNIC_DISPLAY=fake. Any thread, but for what is marked.
class FakeDisplay final : public DisplayBackend
{
public:
    /// What a display tells of itself.
    struct Report {
        /// Nothing: that of its picture. Otherwise as a display that cannot say its size.
        std::optional<QSize> size = {};
        std::uint32_t id = 1; ///< 0: there is none
        QPoint origin = {};   ///< where it lies on the desktop, as one of several monitors
        QString name = {};    ///< its name among them
    };

    /// A grey display of \a size.
    explicit FakeDisplay(QSize size);

    /// Shows \a picture from the next grab on; the display takes its size. Bands that hold the same pixels
    /// as before keep their version.
    void setPicture(const QImage &picture);
    void setPointerPosition(QPoint position);
    void setCursorShape(CursorShape shape);
    /// True lets every grab fail from now on.
    void setRefusesGrabs(bool refuses);
    /// What is told of the display, whatever grabs give.
    void setReport(const Report &report);
    [[nodiscard]] int grabCount() const;
    /// True leaves every prepare() from now on to answerAccess(). Main thread, as the three below.
    void setAsksForAccess(bool asks) { m_asksForAccess = asks; }
    /// Whether a prepare() waits for its answer.
    [[nodiscard]] bool isAsking() const { return m_accessAnswer != nullptr; }
    void answerAccess(const DisplayAccess &access);
    /// Between prepare() and release().
    [[nodiscard]] bool isClaimed() const { return m_isClaimed; }

    void prepare(const QString &parentWindow, const AccessAnswer &answer) override;
    void release() override;
    [[nodiscard]] std::uint32_t mainDisplayId() const override;
    [[nodiscard]] QSize mainDisplaySize() const override;
    [[nodiscard]] QPoint mainDisplayOrigin() const override;
    [[nodiscard]] QString mainDisplayName() const override;
    [[nodiscard]] std::shared_ptr<const BitmapImage> grab(const QRect &rectangle) override;
    [[nodiscard]] QPoint pointerPosition() override;
    [[nodiscard]] std::shared_ptr<const CursorShape> cursorShape() override;

private:
    struct State;
    mutable std::mutex m_mutex;
    std::shared_ptr<State> m_state;
    bool m_asksForAccess = false; ///< on the main thread, as the two below
    bool m_isClaimed = false;
    AccessAnswer m_accessAnswer;
};

} // namespace vornic
