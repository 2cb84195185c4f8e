#pragma once

#include <QElapsedTimer>
#include <QImage>
#include <QObject>
#include <QRect>
#include <QTimer>

#include <functional>
#include <memory>

class QWidget;

namespace vornic {

class WindowPresence;

/// Waits until a window that was minimised or hidden is gone from the screen, a second at most: its decoration too, and
/// with a compositing manager until the pixels where it was stand still.
///
/// Made by WindowProgress at the start of each recording; main thread only.
class ScreenSettling : public QObject
{
    Q_OBJECT
public:
    /// \a frame: where \a window was, in the toolkit's coordinates. \a settled is called once, later.
    ScreenSettling(const QWidget &window, const QRect &frame, std::function<void()> settled);
    ~ScreenSettling() override;

private:
    void look();
    [[nodiscard]] bool pixelsStandStill();

    std::unique_ptr<WindowPresence> m_presence;
    const quintptr m_window; ///< 0: the toolkit has not made one
    const QRect m_frame;
    std::function<void()> m_settled;
    QElapsedTimer m_sinceStart;
    QTimer m_timer;
    QImage m_before; ///< the pixels at the last look
};

} // namespace vornic
