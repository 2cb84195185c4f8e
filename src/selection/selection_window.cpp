#include "selection/selection_window.h"

#include "geometry/toolkit_scale.h"
#include "selection/pointer_grab.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QWindow>

#include <chrono>
#include <cmath>
#include <utility>

namespace vornic {

namespace {

using namespace std::chrono_literals;

/// Another program holds the input while its menu is open, and a moment longer when a key of its own was pressed.
constexpr auto grabInterval = 100ms;
constexpr int grabsBeforeFocus = 10;

double scaleOfMainScreen()
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen ? screen->devicePixelRatio() : 1;
}

SelectionLook lookOf(const SelectionState &state)
{
    return { state.rectangle(), state.windowUnderPointer(), state.pointer() };
}

} // namespace

SelectionWindow::SelectionWindow(const QImage &still, const DisplayPlacement &display, SelectionState state)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint)
    , m_state(std::move(state))
    , m_painting(still,
                 scaleOfMainScreen(),
                 font(),
                 tr("Drag a rectangle, or click a window. Enter takes it, Esc keeps the old one.\n"
                    "Arrow keys move, Shift+arrow keys resize, with Ctrl by ten pixels. "
                    "Tab chooses a window, Home the whole display."))
    , m_shown(lookOf(m_state))
    , m_pointerGrab(createPointerGrab())
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_QuitOnClose, false);
    setCursor(Qt::CrossCursor);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setWindowTitle(tr("Select on screen"));
    setAccessibleName(windowTitle());
    describe();
    if (const QScreen *screen = QGuiApplication::primaryScreen()) {
        const QRect onDesktop(display.origin, display.size);
        const ToolkitScale scale(*screen);
        setGeometry(scale.logicalAround(onDesktop));
        m_inset = onDesktop.topLeft() - scale.pixelsOf(geometry()).topLeft();
    }
    m_grabAgain.setSingleShot(true);
    m_grabAgain.setInterval(grabInterval);
    connect(&m_grabAgain, &QTimer::timeout, this, &SelectionWindow::grabInput);
    if (m_pointerGrab)
        followPointer(display.origin);
}

void SelectionWindow::followPointer(QPoint origin)
{
    connect(m_pointerGrab.get(), &PointerGrab::moved, this, [this, origin](QPoint to) {
        pointerMoved(to - origin);
    });
    connect(m_pointerGrab.get(),
            &PointerGrab::pressed,
            this,
            [this, origin](Qt::MouseButton button, QPoint at) { pointerPressed(button, at - origin); });
    connect(m_pointerGrab.get(),
            &PointerGrab::released,
            this,
            [this, origin](Qt::MouseButton button, QPoint at) { pointerReleased(button, at - origin); });
}

SelectionWindow::~SelectionWindow()
{
    releaseInput();
}

void SelectionWindow::orderFront(QPoint pointer)
{
    m_state.movePointer(pointer);
    m_shown = lookOf(m_state);
    winId();
    windowHandle()->installEventFilter(this);
    show();
    raise();
    grabInput();
}

void SelectionWindow::grabInput()
{
    const bool hasKeyboard = windowHandle()->setKeyboardGrabEnabled(true);
    const bool hasMouse = m_pointerGrab ? m_pointerGrab->take() : windowHandle()->setMouseGrabEnabled(true);
    if (hasKeyboard && hasMouse)
        return;
    m_grabAgain.start();
    if (++m_grabsTried == grabsBeforeFocus)
        activateWindow();
}

void SelectionWindow::releaseInput()
{
    m_pointerGrab.reset();
    if (!windowHandle())
        return;
    windowHandle()->removeEventFilter(this);
    windowHandle()->setKeyboardGrabEnabled(false);
    windowHandle()->setMouseGrabEnabled(false);
}

bool SelectionWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Expose) {
        const bool isExposed = windowHandle()->isExposed();
        if (std::exchange(m_wasExposed, isExposed) && !isExposed)
            emit cancelled();
    }
    return QWidget::eventFilter(watched, event);
}

bool SelectionWindow::focusNextPrevChild(bool /*next*/)
{
    return false; // the tab key goes through the windows
}

void SelectionWindow::keyPressEvent(QKeyEvent *event)
{
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    // The key that has opened this window may be down still.
    if (isEnter && event->isAutoRepeat())
        return;
    // Keyboard and mouse may come on two connections: a drag just before the Enter key counts.
    if (m_pointerGrab)
        m_pointerGrab->catchUp();
    QMetaObject::invokeMethod(
        this,
        [this, key = event->key(), modifiers = event->modifiers()] {
            follow(m_state.pressKey(key, modifiers));
        },
        Qt::QueuedConnection);
}

void SelectionWindow::mouseMoveEvent(QMouseEvent *event)
{
    pointerMoved(pixelAt(event->position()));
}

void SelectionWindow::mousePressEvent(QMouseEvent *event)
{
    pointerPressed(event->button(), pixelAt(event->position()));
}

void SelectionWindow::mouseReleaseEvent(QMouseEvent *event)
{
    pointerReleased(event->button(), pixelAt(event->position()));
}

void SelectionWindow::pointerMoved(QPoint to)
{
    m_state.movePointer(to);
    follow(SelectionState::Outcome::GoesOn);
}

void SelectionWindow::pointerPressed(Qt::MouseButton button, QPoint at)
{
    if (button == Qt::LeftButton)
        m_state.press(at);
    follow(SelectionState::Outcome::GoesOn);
}

void SelectionWindow::pointerReleased(Qt::MouseButton button, QPoint at)
{
    // Not before the release, which another window would get.
    if (button == Qt::RightButton)
        follow(SelectionState::Outcome::Cancelled);
    else if (button == Qt::LeftButton)
        follow(m_state.release(at));
}

void SelectionWindow::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.scale(1 / devicePixelRatioF(), 1 / devicePixelRatioF());
    painter.translate(m_inset);
    m_painting.paint(painter, m_shown);
}

/// The display's pixel at \a inWindow, as good as the toolkit knows it.
QPoint SelectionWindow::pixelAt(QPointF inWindow) const
{
    const QPointF pixels = inWindow * devicePixelRatioF();
    return QPoint(static_cast<int>(std::lround(pixels.x())), static_cast<int>(std::lround(pixels.y())))
        - m_inset;
}

void SelectionWindow::follow(SelectionState::Outcome outcome)
{
    const SelectionLook look = lookOf(m_state);
    const double scale = devicePixelRatioF();
    QRegion dirty;
    for (const QRect &part : m_painting.changed(m_shown, look)) {
        const QRectF inWindow = part.translated(m_inset);
        dirty += QRectF(inWindow.topLeft() / scale, inWindow.size() / scale).toAlignedRect();
    }
    m_shown = look;
    update(dirty);
    describe();
    if (outcome == SelectionState::Outcome::Taken)
        emit taken(m_state.rectangle());
    else if (outcome == SelectionState::Outcome::Cancelled)
        emit cancelled();
}

/// For those who do not see it.
void SelectionWindow::describe()
{
    const QRect rectangle = m_state.rectangle();
    const int bottom = m_state.display().height() - rectangle.y() - rectangle.height();
    setAccessibleDescription(tr("%1 × %2 pixels, %3 from the left and %4 from the bottom")
                                 .arg(rectangle.width())
                                 .arg(rectangle.height())
                                 .arg(rectangle.x())
                                 .arg(bottom));
}

} // namespace vornic
