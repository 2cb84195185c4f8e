#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

#include <optional>
#include <vector>

namespace vornic {

/// What mouse and keyboard have chosen so far, without a window.
///
/// Made by RegionSelection for one choice; main thread only. Until something is drawn or moved, a click takes the
/// window under the pointer; from then on it takes the rectangle that it hits, and beside it lets go of that.
/// Everything is in pixels of the main display, from its upper left, y down.
class SelectionState
{
public:
    enum class Outcome { GoesOn, Taken, Cancelled };

    /// \a windows are the frames that a click may take, from above. A press becomes a drag once the mouse
    /// has gone \a dragDistance pixels, both ways added up.
    SelectionState(QSize display, const QRect &rectangle, std::vector<QRect> windows, int dragDistance);

    [[nodiscard]] QSize display() const { return m_display; }
    /// What is taken by the Enter key.
    [[nodiscard]] QRect rectangle() const { return m_rectangle; }
    /// The window that a click takes; empty when there is none.
    [[nodiscard]] QRect windowUnderPointer() const;
    /// The display's pixel nearest to it; nothing before the mouse was seen on the display.
    [[nodiscard]] std::optional<QPoint> pointer() const;

    /// Points may lie off the display.
    void movePointer(QPoint to);
    void press(QPoint at);
    [[nodiscard]] Outcome release(QPoint at);
    /// \a key is one of Qt::Key; others than those that do something here are passed by.
    [[nodiscard]] Outcome pressKey(int key, Qt::KeyboardModifiers modifiers);

private:
    [[nodiscard]] QRect windowAt(QPoint point) const;
    [[nodiscard]] Outcome click(QPoint at);
    void nextWindow(bool isBackwards);
    void choose(const QRect &rectangle);

    QSize m_display;
    QRect m_before; ///< what was recorded so far
    QRect m_rectangle;
    std::vector<QRect> m_windows;
    int m_dragDistance;
    bool m_isChosen = false; ///< something was drawn, moved or picked by the keyboard
    bool m_isDragging = false;
    std::optional<QPoint> m_pressed;
    std::optional<QPoint> m_pointer; ///< may lie off the display
    std::optional<std::size_t> m_windowOfKeyboard;
};

} // namespace vornic
