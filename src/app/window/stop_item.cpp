#include "app/window/stop_item.h"

#include "app/session/time_text.h"
#include "app/window/application_icon.h"
#include "app/window/stop_bar.h"
#include "desktop/full_screen_watch.h"
#include "desktop/silent_bus.h"

#include <QMenu>
#include <QPainter>
#include <QPixmap>

#include <utility>

namespace vornic {

namespace {

QIcon stopIcon()
{
    return QIcon(QStringLiteral(":/skin/ministopRecorder1.png"));
}

/// A grey disc with two white bars, in the place of the red one with a square.
QIcon pausedIcon()
{
    QIcon icon;
    for (const int side : { 16, 18, 22, 24, 32, 36, 48, 64 }) {
        QPixmap picture(side, side);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(side / 18.0, side / 18.0);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0x70, 0x70, 0x70));
        painter.drawEllipse(QRectF(1, 1, 16, 16));
        for (const double left : { 5.5, 10.0 })
            painter.fillRect(QRectF(left, 5, 2.5, 8), Qt::white);
        painter.end();
        icon.addPixmap(picture);
    }
    return icon;
}

} // namespace

StopItem::StopItem(const QString &title, const QRect &recorded)
    : m_bar(std::make_unique<StopBar>(recorded))
    , m_fullScreen(FullScreenWatch::create())
{
    if (hasTray())
        makeTrayIcon();
    connect(m_bar.get(), &StopBar::stopAsked, this, &StopItem::stopAsked);
    connect(m_bar.get(), &StopBar::pauseAsked, this, &StopItem::pauseAsked);
    connect(m_bar.get(), &StopBar::goOnWithoutSoundAsked, this, &StopItem::goOnWithoutSound);
    connect(m_fullScreen.get(), &FullScreenWatch::changed, this, &StopItem::showBarWhereNeeded);
    connect(&m_blinking, &QTimer::timeout, this, &StopItem::blink);
    setTitle(title);
}

StopItem::~StopItem() = default;

bool StopItem::hasTray()
{
    return sessionBusAnswers() && QSystemTrayIcon::isSystemTrayAvailable();
}

void StopItem::makeTrayIcon()
{
    m_menu = std::make_unique<QMenu>();
    m_clock = m_menu->addAction(QString());
    m_clock->setEnabled(false);
    m_menu->addSeparator();
    m_goOnAction = m_menu->addAction(tr("Go on without sound"));
    m_goOnAction->setVisible(false);
    connect(m_goOnAction, &QAction::triggered, this, &StopItem::goOnWithoutSound);
    m_pauseAction = m_menu->addAction(QString());
    connect(m_pauseAction, &QAction::triggered, this, &StopItem::pauseAsked);
    connect(m_menu->addAction(stopIcon(), tr("Stop the recording")),
            &QAction::triggered,
            this,
            &StopItem::stopAsked);
    m_trayIcon = std::make_unique<QSystemTrayIcon>(stopIcon());
    m_trayIcon->setContextMenu(m_menu.get());
    connect(m_trayIcon.get(),
            &QSystemTrayIcon::activated,
            this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason != QSystemTrayIcon::Context)
                    emit stopAsked();
            });
    m_trayIcon->show();
}

void StopItem::showBarWhereNeeded()
{
    m_bar->setAboveFullScreen(m_fullScreen->isFullScreen());
    m_bar->setWanted(m_isBarAllowed && (!m_trayIcon || m_goOn || m_fullScreen->isFullScreen()));
}

void StopItem::allowBar()
{
    m_isBarAllowed = true;
    showBarWhereNeeded();
}

void StopItem::offerToGoOnWithoutSound(std::function<void()> goOn)
{
    m_goOn = std::move(goOn);
    if (m_goOnAction)
        m_goOnAction->setVisible(true);
    m_bar->offerToGoOnWithoutSound(true);
    showBarWhereNeeded();
}

void StopItem::withdrawOffer()
{
    if (!std::exchange(m_goOn, nullptr))
        return;
    if (m_goOnAction)
        m_goOnAction->setVisible(false);
    m_bar->offerToGoOnWithoutSound(false);
    showBarWhereNeeded();
}

void StopItem::drawAttention()
{
    showBarWhereNeeded();
    if (!m_trayIcon)
        return;
    constexpr int blinks = 12;
    constexpr int blinkMs = 250;
    m_blinksLeft = blinks + m_blinksLeft % 2;
    m_blinking.start(blinkMs);
}

void StopItem::blink()
{
    --m_blinksLeft;
    m_trayIcon->setIcon(m_blinksLeft % 2 == 0 ? icon() : applicationIcon());
    if (m_blinksLeft == 0)
        m_blinking.stop();
}

void StopItem::goOnWithoutSound()
{
    const std::function<void()> goOn = m_goOn;
    withdrawOffer();
    if (goOn)
        goOn();
}

void StopItem::setTitle(const QString &title)
{
    if (title == m_title)
        return;
    m_title = title;
    showTexts();
}

QIcon StopItem::icon() const
{
    return m_isPaused ? pausedIcon() : stopIcon();
}

void StopItem::setPaused(bool isPaused)
{
    m_isPaused = isPaused;
    m_bar->setPaused(isPaused);
    if (m_trayIcon && !m_blinking.isActive())
        m_trayIcon->setIcon(icon());
    showTexts();
}

void StopItem::showLevel(double peak)
{
    m_bar->showLevel(peak);
}

void StopItem::setSoundIsLost(bool isLost)
{
    m_soundIsLost = isLost;
    showTexts();
}

void StopItem::setRoom(const QString &room)
{
    if (room == m_room)
        return;
    m_room = room;
    m_bar->setRoom(room);
    showTexts();
}

void StopItem::setTimeLeft(std::int64_t seconds)
{
    if (m_secondsLeft == seconds)
        return;
    m_secondsLeft = seconds;
    m_bar->setTimeLeft(timeLeftInWords(seconds));
    showTexts();
}

void StopItem::showTexts()
{
    const QString clock = m_secondsLeft ? timeLeftText(*m_secondsLeft) : m_title;
    QString title = m_isPaused ? tr("%1, paused").arg(clock) : clock;
    if (m_soundIsLost)
        title = tr("%1, no sound").arg(title);
    m_bar->setTitle(title);
    if (!m_trayIcon)
        return;
    const QString text = m_room.isEmpty() ? title : QStringLiteral("%1, %2").arg(title, m_room);
    m_trayIcon->setToolTip(tr("Vornic is recording: %1. Click to stop.").arg(text));
    m_clock->setText(tr("Recording: %1").arg(text));
    m_pauseAction->setText(m_isPaused ? tr("Go on with the recording") : tr("Pause the recording"));
}

} // namespace vornic
