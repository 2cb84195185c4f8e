#include "app/window/stop_bar.h"

#include "controls/level_meter.h"
#include "controls/push_button.h"
#include "overlay/window_on_top.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QIcon>
#include <QMouseEvent>
#include <QScreen>
#include <QStyleHints>
#include <QWindow>

#include <array>
#include <utility>

namespace vornic {

namespace {

constexpr int barMargin = 16;
constexpr int meterWidth = 110;
/// How long a bar that is in the movie stays, and how long the pointer rests before it comes back.
constexpr qint64 visibleMs = 3000;
constexpr qint64 restMs = 250;
constexpr int lookMs = 100;
/// A key counts when none came for so long, and not in the bar's first second.
constexpr qint64 quietMs = 400;
constexpr qint64 firstMs = 1000;

constexpr Qt::WindowFlags managed = Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint;
constexpr Qt::WindowFlags unmanaged = Qt::Window | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint;

bool isKeyThatPresses(const QEvent &event)
{
    return event.type() == QEvent::KeyPress || event.type() == QEvent::KeyRelease;
}

} // namespace

QPoint stopBarPosition(QSize bar, const QRect &available, const QRect &avoid)
{
    const QRect inner = available.adjusted(barMargin, barMargin, -barMargin, -barMargin);
    const int right = inner.x() + inner.width() - bar.width();
    const int bottom = inner.y() + inner.height() - bar.height();
    const std::array corners {
        QPoint(right, inner.y()), inner.topLeft(), QPoint(right, bottom), QPoint(inner.x(), bottom)
    };
    for (const QPoint corner : corners) {
        if (!QRect(corner, bar).intersects(avoid))
            return corner;
    }
    return corners.front();
}

StopBar::StopBar(const QRect &recorded)
    : m_recorded(recorded)
{
    setWindowFlags(managed);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_AlwaysShowToolTips);
    setAttribute(Qt::WA_QuitOnClose, false);
    setObjectName(QStringLiteral("stopBar"));
    setWindowTitle(tr("Stop recording"));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->setSpacing(4);
    m_button = addButton(tr("Stop the recording"));
    m_button->setIcon(QIcon(QStringLiteral(":/skin/ministopRecorder1.png")));
    m_button->setIconSize({ 18, 18 });
    connect(m_button, &QAbstractButton::clicked, this, &StopBar::stopAsked);
    m_pauseButton = addButton({});
    connect(m_pauseButton, &QAbstractButton::clicked, this, &StopBar::pauseAsked);
    setPaused(false);
    m_pointerTimer.setInterval(lookMs);
    connect(&m_pointerTimer, &QTimer::timeout, this, &StopBar::watchPointer);
}

StopBar::~StopBar() = default;

PushButton *StopBar::addButton(const QString &name)
{
    auto *button = new PushButton(this);
    button->setToolTip(name);
    button->setAccessibleName(name);
    button->installEventFilter(this);
    layout()->addWidget(button);
    return button;
}

void StopBar::offerToGoOnWithoutSound(bool isOffered)
{
    if (!m_goOnButton && isOffered) {
        m_goOnButton = addButton(tr("No sound has come. Click to go on without sound."));
        m_goOnButton->setText(tr("Go on without sound"));
        connect(m_goOnButton, &QAbstractButton::clicked, this, &StopBar::goOnWithoutSoundAsked);
    }
    if (m_goOnButton)
        m_goOnButton->setVisible(isOffered);
    fit();
}

void StopBar::setTitle(const QString &title)
{
    m_button->setText(title);
    fit();
}

void StopBar::setTimeLeft(const QString &words)
{
    m_button->setAccessibleName(tr("Stop the recording, %1").arg(words));
}

void StopBar::setPaused(bool isPaused)
{
    m_isPaused = isPaused;
    const QString name = isPaused ? tr("Go on with the recording") : tr("Pause the recording");
    m_pauseButton->setText(isPaused ? tr("Resume") : tr("Pause"));
    m_pauseButton->setToolTip(name);
    m_pauseButton->setAccessibleName(name);
    fit();
}

void StopBar::setRoom(const QString &room)
{
    m_button->setToolTip(tr("Stop the recording") + u'\n' + room);
}

void StopBar::showLevel(double peak)
{
    if (!m_meter) {
        m_meter = new LevelMeter(this);
        m_meter->setFixedWidth(meterWidth);
        // Elsewhere it takes what is left; here the bar is as wide as what is in it asks for.
        m_meter->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
        m_meter->setAccessibleName(tr("Level of the sound that is recorded"));
        m_meter->setToolTip(m_meter->accessibleName());
        m_meter->setListening(true);
        static_cast<QBoxLayout *>(layout())->insertWidget(1, m_meter);
        m_meter->show();
        fit();
    }
    m_meter->addPeak(peak);
}

void StopBar::fit()
{
    adjustSize();
    const QScreen &screen = *QGuiApplication::primaryScreen();
    const QRect place = m_isAbove ? screen.geometry() : screen.availableGeometry();
    const QPoint corner = m_draggedTo.value_or(stopBarPosition(size(), place, m_recorded));
    if (pos() != corner)
        move(corner);
}

void StopBar::setWanted(bool isWanted)
{
    m_isWanted = isWanted;
    m_isHidingItself = false;
    m_sinceNeeded.start();
    showOrHide();
}

void StopBar::setAboveFullScreen(bool isAbove)
{
    if (isAbove == m_isAbove)
        return;
    m_isAbove = isAbove;
    m_onTop.reset();
    hide();
    setWindowFlags(isAbove ? unmanaged : managed);
    setWanted(m_isWanted);
}

void StopBar::showOrHide()
{
    const bool isShown = m_isWanted && !m_isHidingItself;
    if (!m_isWanted)
        m_pointerTimer.stop();
    else if (!m_pointerTimer.isActive())
        m_pointerTimer.start();
    if (isShown == isVisible())
        return;
    if (!isShown) {
        hide();
        return;
    }
    fit();
    winId();
    if (m_isAbove && !m_onTop)
        m_onTop = WindowOnTop::create(*windowHandle());
    show();
    m_sinceKey.start();
    m_sinceShown.start();
    m_sinceNeeded.start();
}

void StopBar::watchPointer()
{
    const bool isRecorded = geometry().intersects(m_recorded);
    const bool isAsking = m_goOnButton && !m_goOnButton->isHidden();
    if (!isRecorded || isAsking || m_isPaused
        || (isVisible() && (geometry().contains(QCursor::pos()) || isActiveWindow())))
        m_sinceNeeded.start();
    if (!pointerCallsIt())
        m_sinceAtEdge.invalidate();
    else if (!m_sinceAtEdge.isValid())
        m_sinceAtEdge.start();
    if (m_sinceAtEdge.isValid() && m_sinceAtEdge.hasExpired(restMs)) {
        m_isHidingItself = false;
        m_sinceNeeded.start();
    } else if (m_sinceNeeded.hasExpired(visibleMs) && !m_isDragging) {
        m_isHidingItself = true;
    }
    showOrHide();
}

/// The pointer is at the edge of the screen that the bar is nearer to: the upper or the lower one.
bool StopBar::pointerCallsIt() const
{
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    const QPoint pointer = QCursor::pos();
    if (!screen.contains(pointer))
        return false;
    const bool isAtBottom = geometry().center().y() > screen.center().y();
    return isAtBottom ? pointer.y() >= screen.bottom() - 1 : pointer.y() <= screen.top() + 1;
}

void StopBar::closeEvent(QCloseEvent *event)
{
    event->ignore();
}

void StopBar::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_pressedAt = event->globalPosition().toPoint();
    m_startOfDrag = pos();
    m_isDragging = false;
}

void StopBar::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons().testFlag(Qt::LeftButton) && m_pressedAt)
        dragTo(event->globalPosition().toPoint());
}

void StopBar::mouseReleaseEvent(QMouseEvent * /*event*/)
{
    static_cast<void>(endsDrag());
}

void StopBar::dragTo(QPoint pointer)
{
    const QPoint distance = pointer - *m_pressedAt;
    m_isDragging
        = m_isDragging || distance.manhattanLength() >= QGuiApplication::styleHints()->startDragDistance();
    if (!m_isDragging)
        return;
    m_draggedTo = m_startOfDrag + distance;
    move(*m_draggedTo);
}

bool StopBar::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusIn)
        m_sinceKey.start();
    if (isKeyThatPresses(*event) && swallowsKey())
        return true;
    return dragsButton(*event) || VNPromptView::eventFilter(watched, event);
}

bool StopBar::swallowsKey()
{
    const bool isQuiet = m_sinceKey.isValid() && m_sinceKey.hasExpired(quietMs) && m_sinceShown.isValid()
        && m_sinceShown.hasExpired(firstMs);
    if (!isQuiet)
        m_sinceKey.start();
    return !isQuiet;
}

/// A press on a button that goes far enough drags the bar and is no click.
bool StopBar::dragsButton(QEvent &event)
{
    if (event.type() == QEvent::MouseButtonPress)
        mousePressEvent(static_cast<QMouseEvent *>(&event));
    else if (event.type() == QEvent::MouseMove)
        mouseMoveEvent(static_cast<QMouseEvent *>(&event));
    else if (event.type() == QEvent::MouseButtonRelease)
        return endsDrag();
    return event.type() == QEvent::MouseMove && m_isDragging;
}

bool StopBar::endsDrag()
{
    m_pressedAt.reset();
    if (!std::exchange(m_isDragging, false))
        return false;
    for (PushButton *button : { m_button, m_pauseButton, m_goOnButton }) {
        if (button)
            button->setDown(false);
    }
    return true;
}

} // namespace vornic
