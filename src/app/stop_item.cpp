#include "app/stop_item.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPainter>
#include <QScreen>
#include <QToolButton>

namespace vornic {

namespace {

QIcon stopIcon()
{
    QPixmap picture(32, 32);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xD6, 0x2B, 0x2B));
    painter.drawEllipse(1, 1, 30, 30);
    painter.setBrush(Qt::white);
    painter.drawRoundedRect(10, 10, 12, 12, 2, 2);
    return picture;
}

} // namespace

StopItem::StopItem(const QString &title)
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
    m_trayIcon = std::make_unique<QSystemTrayIcon>(stopIcon());
    connect(m_trayIcon.get(), &QSystemTrayIcon::activated, this, &StopItem::stopAsked);
    m_trayIcon->show();
}

void StopItem::makeBar()
{
    m_bar = std::make_unique<QWidget>(nullptr,
                                      Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint
                                          | Qt::WindowDoesNotAcceptFocus);
    m_bar->setAttribute(Qt::WA_ShowWithoutActivating);
    m_bar->setObjectName(QStringLiteral("stopBar"));
    m_bar->setWindowTitle(QStringLiteral("Stop recording"));
    m_button = new QToolButton(m_bar.get());
    m_button->setIcon(stopIcon());
    m_button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_button->setToolTip(QStringLiteral("Stop the recording"));
    m_button->setAccessibleName(QStringLiteral("Stop the recording"));
    connect(m_button, &QToolButton::clicked, this, &StopItem::stopAsked);
    auto *layout = new QHBoxLayout(m_bar.get());
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_button);
}

void StopItem::setTitle(const QString &title)
{
    if (m_trayIcon)
        m_trayIcon->setToolTip(QStringLiteral("Vornic is recording: %1. Click to stop.").arg(title));
    if (!m_button || m_button->text() == title)
        return;
    m_button->setText(title);
    m_bar->adjustSize();
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    m_bar->move(screen.right() - m_bar->width() - 16, screen.top() + 16);
    m_bar->show();
}

} // namespace vornic
