#include "app/window/countdown.h"

#include "controls/skin_colors.h"
#include "desktop/global_key.h"
#include "overlay/window_on_top.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>

#include <chrono>
#include <utility>

namespace vornic {

namespace {

using namespace std::chrono_literals;

constexpr int side = 220;
constexpr int digitPixels = 120;
constexpr int hintPixels = 15;

} // namespace

Countdown::Countdown(int seconds, std::function<void(bool)> ended)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint)
    , m_seconds(seconds)
    , m_ended(std::move(ended))
    , m_escape(GlobalKey::createForMoment())
{
    setObjectName(QStringLiteral("countdown"));
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_QuitOnClose, false);
    setWindowTitle(tr("Countdown"));
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    setFixedSize(side, side);
    move(screen.center() - rect().center());
    // Where another program has the key, or the desktop gives none, a click cancels it.
    m_hearsEscape = m_escape->listenFor(QStringLiteral("Esc")) == GlobalKey::Answer::Heard;
    connect(m_escape.get(), &GlobalKey::pressed, this, &Countdown::cancel);
    connect(&m_timer, &QTimer::timeout, this, &Countdown::tick);
    m_timer.start(1s);
    winId();
    m_onTop = WindowOnTop::create(*windowHandle());
    show();
    setAccessibleName(tr("Recording begins in %n second(s)", nullptr, m_seconds));
}

Countdown::~Countdown() = default;

void Countdown::tick()
{
    if (--m_seconds <= 0) {
        end(true);
        return;
    }
    setAccessibleName(tr("Recording begins in %n second(s)", nullptr, m_seconds));
    update();
}

void Countdown::end(bool goOn)
{
    m_timer.stop();
    static_cast<void>(m_escape->listenFor({}));
    m_onTop.reset();
    hide();
    if (const auto ended = std::exchange(m_ended, nullptr))
        ended(goOn);
}

void Countdown::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    // A line that is drawn around something lies half outside it where a point has several pixels.
    painter.fillRect(rect(), palette().brightText());
    painter.fillRect(rect().adjusted(1, 1, -1, -1), palette().window());
    painter.setPen(palette().color(QPalette::BrightText));
    QFont digits = font();
    digits.setPixelSize(digitPixels);
    digits.setBold(true);
    painter.setFont(digits);
    painter.drawText(rect().adjusted(0, 0, 0, -hintPixels * 2), Qt::AlignCenter, QString::number(m_seconds));
    QFont hint = font();
    hint.setPixelSize(hintPixels);
    painter.setFont(hint);
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(rect().adjusted(0, 0, 0, -hintPixels),
                     Qt::AlignHCenter | Qt::AlignBottom,
                     m_hearsEscape ? tr("Esc cancels") : tr("A click cancels"));
}

void Countdown::mousePressEvent(QMouseEvent * /*event*/)
{
    cancel();
}

void Countdown::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        cancel();
}

void Countdown::closeEvent(QCloseEvent *event)
{
    event->accept();
    cancel();
}

} // namespace vornic
