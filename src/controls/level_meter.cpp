#include "controls/level_meter.h"

#include "controls/skin_colors.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace vornic {

namespace {

constexpr int meterHeight = 14;
constexpr int narrowest = 96;
constexpr int updateMs = 50;
constexpr double barHeight = 6;
/// Beneath this, sound is as loud as speech should be; above, there is little room left.
constexpr double loudFrom = -12; ///< dBFS

const QColor quiet(0x3f, 0xb9, 0x50);
const QColor loud(0xf0, 0xb4, 0x29);
const QColor tooLoud(0xf2, 0x5c, 0x54);

double shareOf(double decibels)
{
    return 1 - std::clamp(decibels, LevelBallistics::lowest, 0.0) / LevelBallistics::lowest;
}

QString heldText(const LevelLook &look)
{
    if (!look.isListening || look.held <= LevelBallistics::lowest)
        return {};
    const long held = std::lround(look.held);
    // With the sign that is as wide as a digit.
    return held < 0 ? QStringLiteral("\u2212%1 dB").arg(-held) : QStringLiteral("0 dB");
}

void paintBar(QPainter &painter, const QRectF &bar, const LevelLook &look)
{
    painter.setPen(look.isListening ? skin::recessEdge() : skin::disabledEdge());
    painter.setBrush(skin::recess());
    painter.drawRect(bar.adjusted(0.5, 0.5, -0.5, -0.5));
    const QRectF inner = bar.adjusted(1, 1, -1, -1);
    const double end = inner.left() + inner.width() * shareOf(look.level);
    const double loudAt = inner.left() + inner.width() * shareOf(loudFrom);
    const QColor hot = look.isClipping ? tooLoud : loud;
    painter.fillRect(QRectF(inner.topLeft(), QPointF(std::min(end, loudAt), inner.bottom())), quiet);
    if (end > loudAt)
        painter.fillRect(QRectF(QPointF(loudAt, inner.top()), QPointF(end, inner.bottom())), hot);
    if (look.held > LevelBallistics::lowest) {
        const double at = std::min(inner.left() + inner.width() * shareOf(look.held), inner.right() - 2);
        painter.fillRect(QRectF(at, inner.top(), 2, inner.height()), look.held > loudFrom ? hot : quiet);
    }
}

} // namespace

void paintLevelMeter(QPainter &painter, const QRectF &area, const LevelLook &look)
{
    const QFontMetricsF metrics(painter.font());
    const double textWidth = std::ceil(metrics.horizontalAdvance(QStringLiteral("\u221260 dB"))) + 6;
    QRectF bar = area.adjusted(0, 0, -textWidth, 0);
    bar.setTop(std::floor(area.center().y() - barHeight / 2));
    bar.setHeight(barHeight);
    paintBar(painter, bar, look);
    painter.setPen(look.isClipping ? tooLoud : skin::label());
    painter.drawText(area, Qt::AlignRight | Qt::AlignVCenter, heldText(look));
}

LevelMeter::LevelMeter(QWidget *parent)
    : QWidget(parent)
{
    QFont small = font();
    small.setPixelSize(11);
    setFont(small);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    m_timer.setInterval(updateMs);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        advance(static_cast<double>(m_sinceAdvance.restart()) / 1000);
    });
}

void LevelMeter::setListening(bool isListening)
{
    if (std::exchange(m_isListening, isListening) == isListening)
        return;
    m_ballistics = {};
    m_peak = 0;
    m_sinceAdvance.start();
    isListening ? m_timer.start() : m_timer.stop();
    update();
}

void LevelMeter::addPeak(double peak)
{
    if (m_isListening)
        m_peak = std::max(m_peak, peak);
}

int LevelMeter::level() const
{
    return static_cast<int>(std::lround(m_ballistics.level()));
}

int LevelMeter::held() const
{
    return static_cast<int>(std::lround(m_ballistics.held()));
}

void LevelMeter::advance(double seconds)
{
    m_ballistics.update(std::exchange(m_peak, 0), seconds);
    update();
}

QSize LevelMeter::sizeHint() const
{
    return { narrowest, meterHeight };
}

QSize LevelMeter::minimumSizeHint() const
{
    return sizeHint();
}

void LevelMeter::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    paintLevelMeter(painter,
                    rect(),
                    { m_ballistics.level(), m_ballistics.held(), m_ballistics.isClipping(), m_isListening });
}

} // namespace vornic
