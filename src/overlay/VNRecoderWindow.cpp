#include "overlay/VNRecoderWindow.h"

#include "display/main_display.h"
#include "geometry/screen_geometry.h"
#include "geometry/toolkit_scale.h"
#include "overlay/VNRecoderView.h"
#include "overlay/overlay_backend.h"
#include "overlay/overlay_geometry.h"
#include "overlay/overlay_server.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

#include <cmath>
#include <utility>

namespace vornic {

namespace {

/// The middle of the pixel of the desktop at \a onDesktop, in screen coordinates.
QPointF middleOfPixel(QPointF onDesktop)
{
    const QPointF middle(std::floor(onDesktop.x()) + 0.5, std::floor(onDesktop.y()) + 0.5);
    return screenPoint(middle, mainDisplayPlacement());
}

/// The desktop's pixels of a window with \a frame, in screen coordinates: exactly the margin beyond the
/// pixels that are recorded, also where the frame is not whole.
QRect pixelsOfFrame(const QRectF &frame)
{
    const QRectF recorded = frame.adjusted(overlayMargin, overlayMargin, -overlayMargin, -overlayMargin);
    return desktopPixels(recorded, static_cast<int>(overlayMargin), mainDisplayPlacement());
}

} // namespace

VNRecoderWindow::VNRecoderWindow(const QRectF &contentRect,
                                 Qt::WindowFlags /*styleMask*/,
                                 int /*backing*/,
                                 bool /*defer*/)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint)
    , m_server(createOverlayServer(*this))
{
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_QuitOnClose, false);
    setMouseTracking(true);
    setWindowTitle(tr("Recorded rectangle"));
    connect(m_server.get(), &OverlayServer::compositingChanged, this, [this] {
        if (m_view)
            m_view->redraw();
    });
    connect(m_server.get(), &OverlayServer::windowsMoved, this, [this] {
        leaveOutOwnWindows();
        updateAppearance();
    });
    setFrame(contentRect);
}

VNRecoderWindow::VNRecoderWindow()
    : VNRecoderWindow(QRectF(0, 0, 2 * overlayMargin, 2 * overlayMargin), {}, 0, false)
{
}

VNRecoderWindow::~VNRecoderWindow() = default;

void VNRecoderWindow::setContentView(VNRecoderView *view)
{
    m_view = view;
    if (view->parentWidget() != this)
        view->setParent(this);
    view->setGeometry(rect());
    connect(view, &VNRecoderView::redrawn, this, &VNRecoderWindow::updateAppearance);
}

void VNRecoderWindow::setWindowAbove(QWidget *window)
{
    m_windowAbove = window;
    if (isVisible())
        orderFront();
}

void VNRecoderWindow::setFrame(const QRectF &frame)
{
    const QSize sizeBefore = pixelSize();
    const QPoint insetBefore = pixelInset();
    m_frame = frame;
    place();
    if (!m_view || !isVisible())
        return;
    if (pixelSize() == sizeBefore && pixelInset() == insetBefore) {
        updateAppearance();
        return;
    }
    m_view->redraw();
    // Painted now, so that the new size and what belongs into it reach the server together.
    m_view->repaint();
}

void VNRecoderWindow::place()
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    m_onDesktop = pixelsOfFrame(m_frame);
    if (!screen)
        return;
    const ToolkitScale scale(*screen);
    const QRect logical = scale.logicalAround(m_onDesktop);
    m_toolkitPixels = scale.pixelsOf(logical);
    setGeometry(logical);
}

void VNRecoderWindow::leaveOutOwnWindows()
{
    QList<QWindow *> others = QGuiApplication::topLevelWindows();
    others.removeAll(windowHandle());
    // Recorded, the logo has a hole only where a window of the program is in the movie anyway.
    m_ownWindows = m_server->pixelsOf(
        others, m_isLeftToTheDesktop ? OverlayServer::Pixels::Seen : OverlayServer::Pixels::All);
}

void VNRecoderWindow::updateAppearance()
{
    if (!m_view || !windowHandle() || !windowHandle()->handle())
        return;
    const bool takesMouse = !m_view->isRecording();
    if (std::exchange(m_isLeftToTheDesktop, !takesMouse) == takesMouse)
        leaveOutOwnWindows();
    OverlayAppearance appearance;
    appearance.takesMouse = takesMouse;
    const QRegion leftOut = m_ownWindows.translated(-m_toolkitPixels.topLeft());
    // Never all of it: one of the window managers goes on showing the holes of a window that has no shape any
    // more. On the first pixel nothing is drawn.
    const QRegion whole = QRegion(QRect(QPoint(), m_toolkitPixels.size())) - QRect(0, 0, 1, 1);
    appearance.shape = (isTranslucent() ? whole : m_view->shape().translated(pixelInset())) - leftOut;
    // The toolkit rounds points to whole logical coordinates, which are not pixels then.
    const bool needsInputWindow = !isTranslucent() || devicePixelRatioF() != 1;
    if (needsInputWindow && takesMouse && isVisible())
        appearance.inputArea = QRegion(m_onDesktop) - m_ownWindows;
    m_server->setAppearance(*windowHandle(), appearance);
}

void VNRecoderWindow::orderFront()
{
    place();
    winId();
    leaveOutOwnWindows();
    if (m_view)
        m_view->redraw();
    updateAppearance();
    m_server->orderFront(*windowHandle());
    show();
    updateAppearance();
}

void VNRecoderWindow::orderOut()
{
    const bool hadFocus = isActiveWindow();
    m_server->orderOut();
    hide();
    if (hadFocus && m_windowAbove && m_windowAbove->isVisible())
        m_windowAbove->activateWindow();
}

void VNRecoderWindow::becomeKey()
{
    if (canBecomeKeyWindow() && !isActiveWindow())
        activateWindow();
}

void VNRecoderWindow::waitUntilDrawn()
{
    if (!isVisible())
        return;
    if (m_view)
        m_view->repaint();
    m_server->wait();
}

bool VNRecoderWindow::isTranslucent() const
{
    return m_server->isComposited();
}

QPointF VNRecoderWindow::pixelOrigin() const
{
    return screenPoint(QPointF(m_onDesktop.x(), m_onDesktop.y() + m_onDesktop.height()),
                       mainDisplayPlacement());
}

QPointF VNRecoderWindow::mouseLocation(QPointF global) const
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    // What the toolkit tells is rounded to whole logical coordinates.
    return screen && screen->devicePixelRatio() != 1 ? pointerLocation() : middleOfPixel(global);
}

void VNRecoderWindow::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() != QEvent::ActivationChange)
        return;
    if (isActiveWindow())
        emit windowDidBecomeKey();
    else
        emit windowDidResignKey();
}

void VNRecoderWindow::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    if (m_view)
        m_view->setGeometry(rect());
}

void VNRecoderWindow::inputPressed(QPoint onDesktop)
{
    becomeKey();
    if (m_view)
        m_view->mouseDown(middleOfPixel(onDesktop));
}

void VNRecoderWindow::inputDragged(QPoint onDesktop)
{
    if (m_view)
        m_view->mouseDragged(middleOfPixel(onDesktop));
}

bool VNRecoderWindow::filesEntered(const QMimeData &files, bool mayCopy)
{
    const Qt::DropActions actions = mayCopy ? Qt::CopyAction : Qt::IgnoreAction;
    return m_view && m_view->draggingEntered({ &files, actions, nullptr, {} }) == Qt::CopyAction;
}

void VNRecoderWindow::filesLeft()
{
    if (m_view)
        m_view->draggingExited({});
}

bool VNRecoderWindow::filesDropped(const QMimeData &files, QPoint onDesktop)
{
    if (!m_view)
        return false;
    const QPointF point = m_view->dropPoint(middleOfPixel(onDesktop));
    const DraggingInfo info { &files, Qt::CopyAction, nullptr, point };
    return m_view->prepareForDragOperation(info) && m_view->performDragOperation(info);
}

} // namespace vornic
