#pragma once

#include "controls/VNPromptView.h"

#include <QElapsedTimer>
#include <QPoint>
#include <QRect>
#include <QString>
#include <QTimer>

#include <memory>
#include <optional>

namespace vornic {

class LevelMeter;
class PushButton;
class WindowOnTop;

/// Where in \a available a bar of the size \a bar stands: in the first corner in which it is clear of \a
/// avoid, from the upper right on; in the upper right one where none is.
[[nodiscard]] QPoint stopBarPosition(QSize bar, const QRect &available, const QRect &avoid);

/// The small bar that stops a recording, with the running clock on its button, or pauses it.
///
/// Made by StopItem while a recording runs; main thread only. It can be dragged by any part of it and closed by
/// nobody. It never asks for the keyboard focus, and a key that reaches it counts only after a moment without keys,
/// and not in its first second: who types while the focus falls to it stops nothing.
class StopBar : public VNPromptView
{
    Q_OBJECT
public:
    /// \a recorded: what the movie shows, in the toolkit's coordinates. Where the bar cannot stand elsewhere it hides
    /// itself, and comes back when the pointer rests at its edge of the screen.
    explicit StopBar(const QRect &recorded);
    ~StopBar() override;

    void setTitle(const QString &title);
    /// Who cannot see the title is told so of what is left, in words.
    void setTimeLeft(const QString &words);
    /// The second button goes on with the recording, or pauses it. A bar that waits to go on does not hide itself, as no
    /// picture is kept.
    void setPaused(bool isPaused);
    /// What the button's tool tip tells beneath what it does.
    void setRoom(const QString &room);
    /// How loud the sound is: the loudest sample, as a share of the loudest that there is. The first one brings the meter.
    void showLevel(double peak);
    /// Shows it, or takes it off the screen.
    void setWanted(bool isWanted);
    /// Above full-screen windows, where no window manager helps; otherwise an ordinary window, so that the keyboard
    /// reaches it.
    void setAboveFullScreen(bool isAbove);
    /// Shows a button, or takes it away: no sound comes. While it is there the bar does not hide itself, as no picture
    /// is kept.
    void offerToGoOnWithoutSound(bool isOffered);

signals:
    void stopAsked();
    void pauseAsked();
    void goOnWithoutSoundAsked();

protected:
    void closeEvent(QCloseEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    [[nodiscard]] PushButton *addButton(const QString &name);
    [[nodiscard]] bool swallowsKey();
    [[nodiscard]] bool dragsButton(QEvent &event);
    [[nodiscard]] bool endsDrag();
    void dragTo(QPoint pointer);
    void fit();
    void showOrHide();
    void watchPointer();
    [[nodiscard]] bool pointerCallsIt() const;

    QRect m_recorded;
    bool m_isWanted = false;
    bool m_isAbove = false;
    bool m_isPaused = false;
    bool m_isHidingItself = false; ///< wanted, but not to be in the movie for longer
    PushButton *m_button = nullptr;
    PushButton *m_pauseButton = nullptr;
    LevelMeter *m_meter = nullptr;        ///< null before sound comes
    PushButton *m_goOnButton = nullptr;   ///< null until sound is missing
    std::unique_ptr<WindowOnTop> m_onTop; ///< while it is above full-screen windows
    std::optional<QPoint> m_pressedAt;    ///< the pointer at the press, on the screen
    QPoint m_startOfDrag;                 ///< where the bar was at the press
    std::optional<QPoint> m_draggedTo;    ///< where the user has put it
    bool m_isDragging = false;
    QElapsedTimer m_sinceKey; ///< or since it got the focus
    QElapsedTimer m_sinceShown;
    QElapsedTimer m_sinceNeeded; ///< shown, or the pointer was on it
    QElapsedTimer m_sinceAtEdge; ///< the pointer rests there; invalid: it does not
    QTimer m_pointerTimer;
};

} // namespace vornic
