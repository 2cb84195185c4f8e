#pragma once

#include "geometry/screen_geometry.h"

#include <QElapsedTimer>
#include <QObject>
#include <QRect>
#include <QRectF>
#include <QTimer>

#include <memory>
#include <optional>

namespace vornic {

class BitmapImage;
class SelectionWindow;

/// Lets the user choose the rectangle that is recorded, on the dimmed main display, by mouse or keyboard.
///
/// Made by the main window's side for one choice; main thread only. Exactly one of the signals comes, from the event
/// loop; the object may be deleted then, and before that, which hides everything without a signal.
class RegionSelection : public QObject
{
    Q_OBJECT
public:
    /// \a current is the rectangle chosen so far: screen coordinates (y up, device pixels of the main display).
    explicit RegionSelection(const QRectF &current);
    ~RegionSelection() override;

    /// Shows it, once; windows that are not to be in the picture of the display have been hidden before. It waits a
    /// moment until the display stands still, so that nothing of them is left.
    void begin();

signals:
    /// In screen coordinates; everything is off the screen.
    void taken(const QRectF &rectangle);
    /// Everything is off the screen. Also when the display has changed, or the program ends.
    void cancelled();
    /// Nothing was ever on it: the display gives no picture of itself.
    void displayNotShown();

private:
    void lookAtDisplay();
    void showWindow(const BitmapImage &still);
    void cancelOnOtherDisplay();
    void finish(const std::optional<QRect> &chosen);

    QRectF m_current;
    DisplayPlacement m_display;
    QTimer m_lookAgain;
    QElapsedTimer m_sinceBegin;
    std::shared_ptr<const BitmapImage> m_lastLook;
    std::unique_ptr<SelectionWindow> m_window;
    bool m_isFinished = false;
};

} // namespace vornic
