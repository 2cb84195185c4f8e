#include "selection/selection_state.h"

#include "selection/selection_geometry.h"

#include <algorithm>
#include <utility>

namespace vornic {

namespace {

/// Where an arrow key points; nothing for another key.
std::optional<QPoint> direction(int key)
{
    switch (key) {
    case Qt::Key_Left:
        return QPoint(-1, 0);
    case Qt::Key_Right:
        return QPoint(1, 0);
    case Qt::Key_Up:
        return QPoint(0, -1);
    case Qt::Key_Down:
        return QPoint(0, 1);
    default:
        return std::nullopt;
    }
}

} // namespace

SelectionState::SelectionState(QSize display,
                               const QRect &rectangle,
                               std::vector<QRect> windows,
                               int dragDistance)
    : m_display(display)
    , m_before(fittedSelection(rectangle, display))
    , m_rectangle(m_before)
    , m_windows(std::move(windows))
    , m_dragDistance(dragDistance)
{
}

QRect SelectionState::windowAt(QPoint point) const
{
    const auto window
        = std::ranges::find_if(m_windows, [&](const QRect &frame) { return frame.contains(point); });
    return window == m_windows.end() ? QRect() : *window;
}

QRect SelectionState::windowUnderPointer() const
{
    return m_isChosen || m_isDragging || !m_pointer ? QRect() : windowAt(*m_pointer);
}

std::optional<QPoint> SelectionState::pointer() const
{
    return m_pointer ? std::optional(nearestPixel(*m_pointer, m_display)) : std::nullopt;
}

void SelectionState::movePointer(QPoint to)
{
    if (m_pointer || m_pressed || QRect(QPoint(), m_display).contains(to))
        m_pointer = to;
    if (!m_pressed)
        return;
    m_isDragging = m_isDragging || (to - *m_pressed).manhattanLength() >= m_dragDistance;
    if (m_isDragging)
        m_rectangle = drawnSelection(*m_pressed, to, m_display);
}

void SelectionState::press(QPoint at)
{
    movePointer(at);
    m_pressed = at;
}

SelectionState::Outcome SelectionState::release(QPoint at)
{
    if (!m_pressed)
        return Outcome::GoesOn;
    movePointer(at);
    m_pressed.reset();
    if (!std::exchange(m_isDragging, false))
        return click(at);
    choose(m_rectangle);
    return Outcome::GoesOn;
}

SelectionState::Outcome SelectionState::click(QPoint at)
{
    if (const QRect window = m_isChosen ? QRect() : windowAt(at); !window.isEmpty()) {
        choose(window);
        return Outcome::Taken;
    }
    if (m_rectangle.contains(at))
        return Outcome::Taken;
    m_isChosen = false;
    m_rectangle = m_before;
    return Outcome::GoesOn;
}

SelectionState::Outcome SelectionState::pressKey(int key, Qt::KeyboardModifiers modifiers)
{
    if (key == Qt::Key_Escape)
        return Outcome::Cancelled;
    if (m_pressed)
        return Outcome::GoesOn; // the mouse has it
    if (key == Qt::Key_Return || key == Qt::Key_Enter)
        return Outcome::Taken;
    if (const auto to = direction(key)) {
        const QPoint by = *to * (modifiers.testFlag(Qt::ControlModifier) ? 10 : 1);
        choose(modifiers.testFlag(Qt::ShiftModifier) ? resizedSelection(m_rectangle, by, m_display)
                                                     : movedSelection(m_rectangle, by, m_display));
    } else if (key == Qt::Key_Tab || key == Qt::Key_Backtab) {
        nextWindow(key == Qt::Key_Backtab || modifiers.testFlag(Qt::ShiftModifier));
    } else if (key == Qt::Key_Home || key == Qt::Key_F) {
        choose({ QPoint(), m_display });
    }
    return Outcome::GoesOn;
}

void SelectionState::nextWindow(bool isBackwards)
{
    const std::size_t count = m_windows.size();
    if (count == 0)
        return;
    if (!m_windowOfKeyboard)
        m_windowOfKeyboard = isBackwards ? count - 1 : 0;
    else
        m_windowOfKeyboard = (*m_windowOfKeyboard + (isBackwards ? count - 1 : 1)) % count;
    choose(m_windows[*m_windowOfKeyboard]);
}

void SelectionState::choose(const QRect &rectangle)
{
    m_rectangle = fittedSelection(rectangle, m_display);
    m_isChosen = true;
}

} // namespace vornic
