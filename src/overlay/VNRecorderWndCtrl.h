#pragma once

#include "geometry/screen_geometry.h"
#include "options/VNOption.h"
#include "overlay/VNRecoderView.h"
#include "overlay/VNRecoderViewDelegate.h"
#include "overlay/VNRecoderWindowDelegate.h"

#include <QObject>
#include <QPointer>
#include <QRectF>

class QScreen;

namespace vornic {

class VNRecoderWindow;
class VNRecorderWndCtrlDelegate;

/// Ties the overlay to the recording options, in both directions.
///
/// One for the process, made at the first shareRecorderWndCtrl(); main thread only. Whoever gave it options
/// and delegate keeps them alive, or takes them back.
class VNRecorderWndCtrl : public QObject, private VNRecoderViewDelegate, private VNRecoderWindowDelegate
{
    Q_OBJECT
public:
    /// Made once, from any number of calls, and never released; needs a QApplication.
    [[nodiscard]] static VNRecorderWndCtrl &shareRecorderWndCtrl();

    /// Hidden until somebody places it.
    [[nodiscard]] VNRecoderWindow *window() const { return m_window; }
    /// Borrowed; without one the overlay's frame reads as all zeros.
    void setWindow(VNRecoderWindow *window) { m_window = window; }
    [[nodiscard]] VNRecoderView *recorderView() const { return _recorderView; }
    /// Borrowed.
    void setRecorderView(VNRecoderView *view) { _recorderView = view; }
    [[nodiscard]] VNOption *options() const { return _options; }
    /// While the window shows a rectangle, it follows the options' selectedRect from now on.
    void setOptions(VNOption *options);
    [[nodiscard]] VNRecorderWndCtrlDelegate *delegate() const { return _delegate; }
    void setDelegate(VNRecorderWndCtrlDelegate *delegate) { _delegate = delegate; }

    /// Repaints the view and lets the window take or leave the mouse, after any change of the logo's settings
    /// or of the recording's state. A recording that has just begun finds neither tint nor handles on the
    /// screen when this returns, but for a compositing manager that is a frame behind.
    void reloadData();
    /// Places and shows or hides the window as the options ask for: around the selected rectangle, around the
    /// main display when all of it is recorded with a logo, or not at all. After any change of region or
    /// logo.
    void placeWindow();

    /// Leaves the desktop to other programs: the overlay is hidden, and the main window no longer stays on top,
    /// until the user turns to the main window again. After a recording that has opened a folder or a player.
    void stepAside();

    /// A recorded rectangle's window frame, and the other way round.
    [[nodiscard]] static QRectF enlargeRectBounds(const QRectF &rectangle);
    [[nodiscard]] static QRectF excludeRectBounds(const QRectF &rectangle);

    bool VNRecorderViewWindowIsRecording(VNRecoderView &view) override;
    bool VNRecorderViewWindowIsPaused(VNRecoderView &view) override;
    bool VNRecorderViewWindowIsRecordFullScreen(VNRecoderView &view) override;
    void VNRecorderViewWindowFrameDidChanged(VNRecoderView &view) override;
    /// Nobody asks: the window takes the focus at any time.
    bool VNRecoderWindowCanBecameKeyWindow(VNRecoderWindow &window) override;

private:
    VNRecorderWndCtrl();
    ~VNRecorderWndCtrl() override;

    void windowDidLoad();
    void windowDidBecomeKey();
    void windowDidResignKey();
    void followSelectedRect();
    void watchScreen(const QScreen *screen);
    void followDisplay();

    VNRecoderWindow *m_window = nullptr;
    bool m_shownRecording = false;
    DisplayPlacement m_placedOn; ///< what the window's place was reckoned with last
    QPointer<VNRecoderView> _recorderView;
    QPointer<VNOption> _options;
    VNRecorderWndCtrlDelegate *_delegate = nullptr;
};

} // namespace vornic
