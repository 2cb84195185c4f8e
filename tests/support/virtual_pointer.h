#pragma once

#include <QPoint>
#include <QSize>

#include <memory>

namespace vornic::test {

/// A mouse of a wlroots compositor, as if it were plugged in. There is none before.
///
/// Made by tests, on one thread. Each function returns once the compositor has done it.
class VirtualPointer
{
public:
    /// On the compositor of $WAYLAND_DISPLAY; \a pixels is the size of its only monitor. Null where there are no such
    /// pointers.
    [[nodiscard]] static std::unique_ptr<VirtualPointer> plugIn(QSize pixels);
    ~VirtualPointer();
    VirtualPointer(const VirtualPointer &) = delete;
    VirtualPointer &operator=(const VirtualPointer &) = delete;

    /// To the middle of that device pixel.
    void moveTo(QPoint pixel);
    void press() { button(true); }
    void release() { button(false); }
    void click(QPoint pixel);
    /// Presses at \a from, goes to \a to by way of a point between, and releases.
    void drag(QPoint from, QPoint to);

private:
    struct Parts;

    VirtualPointer(std::unique_ptr<Parts> parts, QSize pixels);
    void button(bool isDown);
    void endFrame();

    std::unique_ptr<Parts> m_parts;
    const QSize m_pixels;
};

} // namespace vornic::test
