#include "overlay/VNRecorderWndCtrl.h"

#include "display/main_display.h"
#include "options/VNOption.h"
#include "overlay/VNRecoderView.h"
#include "overlay/VNRecoderWindow.h"
#include "overlay/VNRecorderWndCtrlDelegate.h"
#include "overlay/overlay_geometry.h"

#include <QGuiApplication>
#include <QScreen>

#include <ui_VNRecorderWndCtrl.h>

#include <utility>

namespace vornic {

VNRecorderWndCtrl &VNRecorderWndCtrl::shareRecorderWndCtrl()
{
    static auto *const shared = new VNRecorderWndCtrl;
    return *shared;
}

VNRecorderWndCtrl::VNRecorderWndCtrl()
    : m_window(new VNRecoderWindow)
{
    Ui::VNRecorderWndCtrl ui {};
    ui.setupUi(m_window);
    _recorderView = ui.recorderView;
    windowDidLoad();
}

VNRecorderWndCtrl::~VNRecorderWndCtrl() = default;

void VNRecorderWndCtrl::windowDidLoad()
{
    _recorderView->setAcceptDrops(true); // files only, as the view decides
    _recorderView->setDelegate(this);
    _recorderView->setLogoContext(_options ? _options->logoContext() : nullptr);
    m_window->setContentView(_recorderView);
    m_window->setRecorderWnddelegate(this);
    connect(m_window, &VNRecoderWindow::windowDidBecomeKey, this, &VNRecorderWndCtrl::windowDidBecomeKey);
    connect(m_window, &VNRecoderWindow::windowDidResignKey, this, &VNRecorderWndCtrl::windowDidResignKey);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &VNRecorderWndCtrl::watchScreen);
    watchScreen(QGuiApplication::primaryScreen());
}

/// Frames count from the lower left of the main display, so they stand elsewhere once its size is another.
void VNRecorderWndCtrl::watchScreen(const QScreen *screen)
{
    const auto placeAgain = [this] {
        if (m_window && m_window->isOrderedIn())
            placeWindow();
    };
    if (screen)
        connect(screen, &QScreen::geometryChanged, this, placeAgain);
    placeAgain();
}

void VNRecorderWndCtrl::setOptions(VNOption *options)
{
    if (_options)
        _options->disconnect(this);
    _options = options;
    if (options)
        connect(options, &VNOption::selectedRectChanged, this, &VNRecorderWndCtrl::followSelectedRect);
    if (_recorderView)
        _recorderView->setLogoContext(options ? options->logoContext() : nullptr);
}

void VNRecorderWndCtrl::followSelectedRect()
{
    if (m_window && m_window->isOrderedIn() && _options->recordsRectangle())
        m_window->setFrame(enlargeRectBounds(_options->selectedRect()));
}

/// The desktop's user may choose another monitor whenever a recording begins.
void VNRecorderWndCtrl::followDisplay()
{
    const DisplayPlacement now = mainDisplayPlacement();
    if (m_window && m_window->isOrderedIn() && !now.size.isEmpty()
        && (now.size != m_placedOn.size || now.origin != m_placedOn.origin))
        placeWindow();
}

void VNRecorderWndCtrl::reloadData()
{
    if (!_recorderView)
        return;
    followDisplay();
    _recorderView->redraw();
    const bool isRecording = VNRecorderViewWindowIsRecording(*_recorderView);
    if (std::exchange(m_shownRecording, isRecording) == isRecording || !m_window)
        return;
    m_window->recordingChanged();
    m_window->waitUntilDrawn();
}

void VNRecorderWndCtrl::stepAside()
{
    if (m_window)
        m_window->stepAside();
}

void VNRecorderWndCtrl::placeWindow()
{
    if (!m_window)
        return;
    const bool fullScreen = !_options || !_options->recordsRectangle();
    if (fullScreen && !(_options && _options->logoContext()->LogoValidate())) {
        m_window->orderOut();
        return;
    }
    m_placedOn = mainDisplayPlacement();
    m_window->setFrame(enlargeRectBounds(fullScreen ? VNOption::screenFrame() : _options->selectedRect()));
    m_window->orderFront();
    reloadData();
}

QRectF VNRecorderWndCtrl::enlargeRectBounds(const QRectF &rectangle)
{
    return rectangle.adjusted(-overlayMargin, -overlayMargin, overlayMargin, overlayMargin);
}

QRectF VNRecorderWndCtrl::excludeRectBounds(const QRectF &rectangle)
{
    return rectangle.adjusted(overlayMargin, overlayMargin, -overlayMargin, -overlayMargin);
}

bool VNRecorderWndCtrl::VNRecorderViewWindowIsRecording(VNRecoderView & /*view*/)
{
    return _delegate && _delegate->VNRecorderWndCtrlIsRecording(*this);
}

bool VNRecorderWndCtrl::VNRecorderViewWindowIsPaused(VNRecoderView & /*view*/)
{
    return _delegate && _delegate->VNRecorderWndCtrlIsPaused(*this);
}

bool VNRecorderWndCtrl::VNRecoderWindowCanBecameKeyWindow(VNRecoderWindow & /*window*/)
{
    return _delegate && !_delegate->VNRecorderWndCtrlIsRecording(*this);
}

bool VNRecorderWndCtrl::VNRecorderViewWindowIsRecordFullScreen(VNRecoderView & /*view*/)
{
    return !_options || !_options->recordsRectangle();
}

void VNRecorderWndCtrl::VNRecorderViewWindowFrameDidChanged(VNRecoderView & /*view*/)
{
    if (_options)
        _options->setSelectedRect(excludeRectBounds(m_window ? m_window->frame() : QRectF()));
}

void VNRecorderWndCtrl::windowDidBecomeKey()
{
    if (_recorderView)
        _recorderView->redraw();
}

void VNRecorderWndCtrl::windowDidResignKey()
{
    if (_recorderView)
        _recorderView->redraw();
}

} // namespace vornic
