#pragma once

#include <QImage>

#include <memory>

namespace vornic::test {

/// Covers the monitor of a SwaySession with pictures of the test's.
///
/// Made by tests, on one thread.
class WaylandPainter
{
public:
    /// On the compositor of $WAYLAND_DISPLAY; null where it does not take pictures.
    [[nodiscard]] static std::unique_ptr<WaylandPainter> start();
    ~WaylandPainter();
    WaylandPainter(const WaylandPainter &) = delete;
    WaylandPainter &operator=(const WaylandPainter &) = delete;

    /// Of the monitor, in device pixels.
    [[nodiscard]] QSize pixels() const;
    /// Shows \a picture, whose pixels are those of the monitor, and returns once the compositor has it; false where it
    /// takes none.
    [[nodiscard]] bool show(const QImage &picture);
    /// The same, and returns once the compositor has drawn it, which it does at most as often as the monitor shows
    /// pictures.
    [[nodiscard]] bool draw(const QImage &picture);

private:
    struct Parts;

    explicit WaylandPainter(std::unique_ptr<Parts> parts);

    std::unique_ptr<Parts> m_parts;
};

} // namespace vornic::test
