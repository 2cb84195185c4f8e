#include "app/window/elided_label.h"

#include "base/printable.h"

#include <QPainter>

namespace vornic {

ElidedLabel::ElidedLabel(QWidget *parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void ElidedLabel::showText(const QString &text, const QStringList &details)
{
    QStringList lines;
    for (const QString &line : details)
        lines += printable(line);
    m_details = lines.join(u'\n');
    setText(printable(text));
    showToolTip();
}

void ElidedLabel::showToolTip()
{
    const bool fits = fontMetrics().horizontalAdvance(text()) <= contentsRect().width();
    setToolTip(m_details.isEmpty() && !fits ? text() : m_details);
}

void ElidedLabel::resizeEvent(QResizeEvent *event)
{
    QLabel::resizeEvent(event);
    showToolTip();
}

void ElidedLabel::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(contentsRect(),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(text(), Qt::ElideMiddle, contentsRect().width()));
}

QSize ElidedLabel::sizeHint() const
{
    return { 0, fontMetrics().height() };
}

QSize ElidedLabel::minimumSizeHint() const
{
    return sizeHint();
}

} // namespace vornic
