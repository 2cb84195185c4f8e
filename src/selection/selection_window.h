#pragma once

#include "geometry/screen_geometry.h"
#include "selection/selection_painting.h"
#include "selection/selection_state.h"

#include <QTimer>
#include <QWidget>

#include <memory>

namespace vornic {

class PointerGrab;

/// Covers the main display with a still picture of it, on which a rectangle is chosen.
///
/// Made by RegionSelection for one choice; main thread only. No window manager touches it. While it is shown it has
/// the keyboard and the mouse whatever has the focus; where another program holds them, it asks for some time and
/// then takes the focus.
class SelectionWindow : public QWidget
{
    Q_OBJECT
public:
    /// \a still is the display's picture, of display.size.
    SelectionWindow(const QImage &still, const DisplayPlacement &display, SelectionState state);
    ~SelectionWindow() override;

    /// Shows it above everything; \a pointer is where the mouse is, in the display's pixels.
    void orderFront(QPoint pointer);

signals:
    /// In the display's pixels.
    void taken(const QRect &rectangle);
    /// Also when the window was closed or taken off the screen by something else.
    void cancelled();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    /// \a origin is the display's, on the desktop.
    void followPointer(QPoint origin);
    void grabInput();
    void releaseInput();
    void pointerMoved(QPoint to);
    void pointerPressed(Qt::MouseButton button, QPoint at);
    void pointerReleased(Qt::MouseButton button, QPoint at);
    [[nodiscard]] QPoint pixelAt(QPointF inWindow) const;
    void follow(SelectionState::Outcome outcome);
    void describe();

    SelectionState m_state;
    SelectionPainting m_painting;
    SelectionLook m_shown;
    QPoint m_inset; ///< of the display in the toolkit's window, which cannot stand on every pixel
    QTimer m_grabAgain;
    int m_grabsTried = 0;
    std::unique_ptr<PointerGrab> m_pointerGrab; ///< null: the toolkit's
    bool m_wasExposed = false;
};

} // namespace vornic
