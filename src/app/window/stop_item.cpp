#include "app/window/stop_item.h"

#include "controls/VNPromptView.h"
#include "controls/push_button.h"
#include "controls/skin_pictures.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QMenu>
#include <QScreen>

#include <array>

namespace vornic {

namespace {

constexpr int barMargin = 16;

QIcon stopIcon()
{
    return QIcon(QStringLiteral(":/skin/ministopRecorder1.png"));
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

StopItem::StopItem(const QString &title, const QRect &avoid)
    : m_avoid(avoid)
{
    if (QSystemTrayIcon::isSystemTrayAvailable())
        makeTrayIcon();
    else
        makeBar();
    setTitle(title);
}

StopItem::~StopItem() = default;

void StopItem::makeTrayIcon()
{
    m_menu = std::make_unique<QMenu>();
    m_clock = m_menu->addAction(QString());
    m_clock->setEnabled(false);
    m_menu->addSeparator();
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

void StopItem::makeBar()
{
    m_bar = std::make_unique<VNPromptView>();
    // A window of its own among those that the keyboard reaches.
    m_bar->setWindowFlags(Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    m_bar->setAttribute(Qt::WA_ShowWithoutActivating);
    m_bar->setAttribute(Qt::WA_QuitOnClose, false);
    m_bar->setObjectName(QStringLiteral("stopBar"));
    m_bar->setWindowTitle(tr("Stop recording"));
    m_button = new PushButton(m_bar.get());
    m_button->setIcon(stopIcon());
    m_button->setIconSize({ 18, 18 });
    m_button->setToolTip(tr("Stop the recording"));
    m_button->setAccessibleName(tr("Stop the recording"));
    connect(m_button, &QAbstractButton::clicked, this, &StopItem::stopAsked);
    auto *layout = new QHBoxLayout(m_bar.get());
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_button);
}

void StopItem::setTitle(const QString &title)
{
    if (title == m_title)
        return;
    m_title = title;
    if (m_trayIcon) {
        m_trayIcon->setToolTip(tr("Vornic is recording: %1. Click to stop.").arg(title));
        m_clock->setText(tr("Recording: %1").arg(title));
        return;
    }
    m_button->setText(title);
    m_bar->adjustSize();
    m_bar->move(
        stopBarPosition(m_bar->size(), QGuiApplication::primaryScreen()->availableGeometry(), m_avoid));
    m_bar->show();
}

} // namespace vornic
