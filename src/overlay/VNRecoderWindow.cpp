#include "overlay/VNRecoderWindow.h"

#include "display/display_scale.h"
#include "display/main_display.h"
#include "geometry/screen_geometry.h"
#include "overlay/VNRecoderView.h"
#include "overlay/overlay_backend.h"
#include "overlay/overlay_geometry.h"
#include "overlay/overlay_server.h"
#include "overlay/size_label.h"

#include <QApplication>
#include <QEvent>
#include <QScreen>
#include <QTimer>
#include <QWindow>

#include <chrono>
#include <cmath>
#include <utility>

namespace vornic {

namespace {

/// For how long another window has the keyboard focus before its return to the window above is the user's doing.
constexpr qint64 leftMs = 300;

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

/// The desktop, and so much around it that ordinary frames which reach beyond it are whole.
QRect pixelsOfDesktop()
{
    constexpr int around = 64;
    const DisplayPlacement main = mainDisplayPlacement();
    QRect desktop(main.origin, main.size);
    const auto screens = QGuiApplication::screens();
    for (const QScreen *screen : screens)
        desktop |= displayScale(*screen).pixelsOf(screen->geometry());
    return desktop.adjusted(-around, -around, around, around);
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
    m_server->setPaint([this](QPainter &painter) {
        if (m_view)
            m_view->paintPixels(painter);
    });
    // For the toolkit the window is shown all the same, so that all that depends on that stays as it is.
    setAttribute(Qt::WA_DontShowOnScreen, m_server->hasSurface());
    setUpdatesEnabled(!m_server->hasSurface());
    connect(m_server.get(), &OverlayServer::compositingChanged, this, [this] {
        if (m_view)
            m_view->redraw();
    });
    connect(m_server.get(), &OverlayServer::draggingChanged, this, [this] {
        m_isDragRefused = false;
        updateAppearance();
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
    connect(view, &VNRecoderView::draggingRefused, this, [this] {
        m_isDragRefused = true;
        updateAppearance();
    });
}

void VNRecoderWindow::setWindowAbove(QWidget *window)
{
    if (m_windowAbove)
        m_windowAbove->removeEventFilter(this);
    m_windowAbove = window;
    if (window)
        window->installEventFilter(this);
    keepWindowAboveOnTop();
    followWindowAboveSoon();
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
    const QScreen *screen = displayScreen();
    m_onDesktop = pixelsOfFrame(m_frame);
    if (m_server->hasSurface()) {
        const DisplayPlacement main = mainDisplayPlacement();
        m_held = m_onDesktop & QRect(main.origin, main.size);
        m_toolkitPixels = m_onDesktop;
        return;
    }
    const QRect desktop = pixelsOfDesktop();
    m_held = m_onDesktop & desktop;
    if (!screen)
        return;
    const ToolkitScale scale = displayScale(*screen);
    const QRect logical
        = scale.logicalAround(m_held.isEmpty() ? QRect(desktop.topLeft(), QSize(1, 1)) : m_held);
    m_toolkitPixels = scale.pixelsOf(logical);
    setGeometry(logical);
}

void VNRecoderWindow::leaveOutOwnWindows()
{
    QList<QWindow *> others = QGuiApplication::topLevelWindows();
    others.removeIf([this](const QWindow *window) {
        return window == windowHandle() || window->flags().testFlag(Qt::WindowTransparentForInput);
    });
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
    const bool isInParts = m_server->keepsMouse() && (m_isLeftToTheDesktop || m_view->isRecordFullScreen());
    const bool wasInParts = std::exchange(m_isInParts, isInParts);
    if (isInParts && !wasInParts)
        setOnScreen(false);
    m_server->setAppearance(*windowHandle(), appearance());
    if (wasInParts && !isInParts)
        setOnScreen(true);
}

OverlayAppearance VNRecoderWindow::appearance() const
{
    OverlayAppearance appearance;
    const QRect shown = isShownByServer() ? m_onDesktop : m_toolkitPixels;
    const QRegion leftOut = m_ownWindows.translated(-shown.topLeft());
    // Never all of it: one of the window managers goes on showing the holes of a window that has no shape any
    // more. On the first pixel nothing is drawn.
    const QRegion whole = QRegion(QRect(QPoint(), shown.size())) - QRect(0, 0, 1, 1);
    appearance.shape = (isTranslucent() ? whole : m_view->shape().translated(pixelInset())) - leftOut;
    appearance.pixels = m_onDesktop;
    // The toolkit rounds points to whole logical coordinates, which are not pixels then.
    const bool needsInputWindow = isShownByServer() || !isTranslucent() || pixelScale() != 1;
    const QRegion taken = takenPixels();
    if (taken != QRegion(QRect(QPoint(), m_onDesktop.size())))
        appearance.mouseShape = taken.translated(pixelInset()) & QRect(QPoint(), shown.size());
    if (needsInputWindow && isVisible())
        appearance.inputArea = (taken.translated(m_onDesktop.topLeft()) & m_held) - m_ownWindows;
    if (m_isInParts)
        appearance.parts = parts();
    return appearance;
}

/// What is seen where nothing else may be in the way of the mouse: strips around the recorded rectangle, and the logo.
QList<QRect> VNRecoderWindow::parts() const
{
    constexpr int margin = static_cast<int>(overlayMargin);
    const DisplayPlacement main = mainDisplayPlacement();
    const QRect display = QRect(main.origin, main.size).translated(-m_onDesktop.topLeft());
    const QRect frame(QPoint(), m_onDesktop.size());
    QList<QRect> parts;
    for (const QRectF &strip : frameBars(frame, margin))
        parts += strip.toRect() & display;
    // Where a window cannot stand at every pixel it leaves out those at its edge.
    const QRect logo = m_view->logoArea().adjusted(-1, -1, 1, 1);
    parts += logo & frame.adjusted(margin, margin, -margin, -margin) & display;
    parts.removeIf([](const QRect &part) { return part.isEmpty(); });
    return parts;
}

/// For the toolkit the window stays shown.
void VNRecoderWindow::setOnScreen(bool isOnScreen)
{
    const bool isShown = isVisible();
    hide();
    setAttribute(Qt::WA_DontShowOnScreen, !isOnScreen);
    setUpdatesEnabled(isOnScreen);
    setVisible(isShown);
    if (isShown && isOnScreen)
        m_server->orderFront(*windowHandle());
}

/// What of the frame takes the mouse: while the full display is recorded the logo, but all while a picture is
/// dragged that may be dropped anywhere. Pixels of the view, y down.
QRegion VNRecoderWindow::takenPixels() const
{
    const bool mayBeDroppedOn
        = m_server->isDragging() && !m_isDragRefused && m_view->takesPictures() && !m_view->isRecording();
    return mayBeDroppedOn ? QRegion(QRect(QPoint(), m_onDesktop.size())) : m_view->mouseArea();
}

void VNRecoderWindow::orderFront()
{
    m_isOrderedIn = true;
    if (mayBeShown())
        bringToDesktop();
    else
        takeFromDesktop();
}

void VNRecoderWindow::orderOut()
{
    m_isOrderedIn = false;
    takeFromDesktop();
}

bool VNRecoderWindow::mayBeShown() const
{
    if (m_view && m_view->isRecording())
        return true;
    return !m_isAside && (!m_windowAbove || (m_windowAbove->isVisible() && !m_windowAbove->isMinimized()));
}

void VNRecoderWindow::bringToDesktop()
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
    keepWindowAboveOnTop();
}

void VNRecoderWindow::takeFromDesktop()
{
    const bool hadFocus = isActiveWindow();
    hideSize();
    m_server->orderOut();
    hide();
    keepWindowAboveOnTop();
    if (hadFocus && m_windowAbove && m_windowAbove->isVisible() && !m_windowAbove->isMinimized())
        m_windowAbove->activateWindow();
}

void VNRecoderWindow::followWindowAbove()
{
    if (const bool isWanted = m_isOrderedIn && mayBeShown(); isWanted && !isVisible())
        bringToDesktop();
    else if (!isWanted && isVisible())
        takeFromDesktop();
    keepWindowAboveOnTop();
}

/// Not at once: the window above is minimised just before a recording begins, through which this one stays.
void VNRecoderWindow::followWindowAboveSoon()
{
    QMetaObject::invokeMethod(this, &VNRecoderWindow::followWindowAbove, Qt::QueuedConnection);
}

void VNRecoderWindow::recordingChanged()
{
    if (m_view && m_view->isRecording()) {
        hideSize();
        returnToDesktop();
        followWindowAbove();
    } else {
        keepWindowAboveOnTop();
        followWindowAboveSoon(); // the window above may be about to come back
    }
}

void VNRecoderWindow::stepAside()
{
    if (!m_windowAbove)
        return;
    m_isAside = true;
    m_sinceLeft.invalidate();
    qApp->installEventFilter(this);
    followWindowAbove();
}

void VNRecoderWindow::returnToDesktop()
{
    m_isAside = false;
    qApp->removeEventFilter(this);
    followWindowAboveSoon();
}

/// A menu that the user has just opened would close when windows are stacked anew.
void VNRecoderWindow::returnOnceNoMenuIsOpen()
{
    constexpr std::chrono::milliseconds lookAgain(100);
    if (QApplication::activePopupWidget())
        QTimer::singleShot(lookAgain, this, &VNRecoderWindow::returnOnceNoMenuIsOpen);
    else if (m_isAside)
        returnToDesktop();
}

/// Through the platform's window: the toolkit's widget would be hidden for it.
void VNRecoderWindow::keepWindowAboveOnTop()
{
    if (!m_windowAbove)
        return;
    const bool isOnTop = isVisible() && !(m_view && m_view->isRecording());
    Qt::WindowFlags flags = m_windowAbove->windowFlags();
    if (flags.testFlag(Qt::WindowStaysOnTopHint) == isOnTop)
        return;
    QWindow *const window = m_windowAbove->windowHandle();
    if (window && m_windowAbove->isVisible() && !window->isExposed()) {
        window->installEventFilter(this); // window managers listen only once it is on the screen
        return;
    }
    m_windowAbove->overrideWindowFlags(flags.setFlag(Qt::WindowStaysOnTopHint, isOnTop));
    if (window)
        window->setFlag(Qt::WindowStaysOnTopHint, isOnTop);
}

bool VNRecoderWindow::eventFilter(QObject *object, QEvent *event)
{
    const QEvent::Type type = event->type();
    if (object == m_windowAbove) {
        if (type == QEvent::Show || type == QEvent::Hide || type == QEvent::WindowStateChange)
            followWindowAboveSoon();
        else if (type == QEvent::WindowDeactivate)
            m_sinceLeft.start();
        else if (type == QEvent::WindowActivate && m_isAside && m_sinceLeft.isValid()
                 && m_sinceLeft.hasExpired(leftMs))
            returnToDesktop(); // otherwise the sheet that has just closed gave the focus back
    }
    if (type == QEvent::Expose)
        keepWindowAboveOnTop();
    if (m_isAside && (type == QEvent::MouseButtonPress || type == QEvent::KeyPress) && object->isWidgetType()
        && static_cast<QWidget *>(object)->window() == m_windowAbove)
        QMetaObject::invokeMethod(this, &VNRecoderWindow::returnOnceNoMenuIsOpen, Qt::QueuedConnection);
    return QWidget::eventFilter(object, event);
}

void VNRecoderWindow::becomeKey()
{
    if (canBecomeKeyWindow() && !isActiveWindow() && !m_server->hasSurface())
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

bool VNRecoderWindow::isShownByServer() const
{
    return m_isInParts || m_server->hasSurface();
}

bool VNRecoderWindow::isExact() const
{
    return m_server->isExact();
}

double VNRecoderWindow::pixelScale() const
{
    return devicePixelRatioF() * displayPixelsPerScreenPixel();
}

QPoint VNRecoderWindow::pixelInset() const
{
    return isShownByServer() ? QPoint() : m_onDesktop.topLeft() - m_toolkitPixels.topLeft();
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
    if (windowHandle() && windowHandle()->handle() && isVisible())
        m_server->takeFocus(*windowHandle());
    if (m_view)
        m_view->mouseDown(middleOfPixel(onDesktop));
}

void VNRecoderWindow::showSize()
{
    const QScreen *screen = displayScreen();
    if (!screen || !isVisible())
        return;
    if (!m_size)
        m_size = std::make_unique<SizeLabel>();
    constexpr int margins = static_cast<int>(2 * overlayMargin);
    m_size->tell(m_onDesktop.size() - QSize(margins, margins),
                 displayScale(*screen).logicalAround(m_onDesktop),
                 screen->availableGeometry());
}

void VNRecoderWindow::hideSize()
{
    if (m_size)
        m_size->endTelling();
}

void VNRecoderWindow::showCursor(QPointF mouseLocation)
{
    if (m_view)
        setCursor(m_view->cursorAt(mouseLocation));
}

void VNRecoderWindow::mouseReleaseEvent(QMouseEvent * /*event*/)
{
    hideSize();
}

void VNRecoderWindow::inputReleased()
{
    hideSize();
}

void VNRecoderWindow::inputMoved(QPoint onDesktop)
{
    if (m_view)
        m_server->setCursor(m_view->cursorAt(middleOfPixel(onDesktop)));
}

void VNRecoderWindow::inputDragged(QPoint onDesktop)
{
    if (m_view)
        m_view->mouseDragged(middleOfPixel(onDesktop));
}

bool VNRecoderWindow::filesEntered(const QMimeData &files, bool mayCopy)
{
    const Qt::DropActions actions = mayCopy ? Qt::CopyAction : Qt::IgnoreAction;
    const bool isTaken
        = m_view && m_view->draggingEntered({ &files, actions, nullptr, {} }) == Qt::CopyAction;
    m_isDragRefused = !isTaken;
    updateAppearance();
    return isTaken;
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
