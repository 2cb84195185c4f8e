#include "controls/VNPromptView.h"

#include "controls/skin_colors.h"

#include <QLinearGradient>
#include <QPainter>

namespace vornic {

void paintPromptBackground(QPainter &painter, const QRectF &bounds)
{
    QLinearGradient gradient(bounds.topLeft(), bounds.bottomLeft());
    gradient.setColorAt(0, skin::promptTop());
    gradient.setColorAt(1, skin::promptBottom());
    painter.fillRect(bounds, gradient);
}

VNPromptView::VNPromptView(QWidget *parent)
    : QWidget(parent)
{
    // Every pixel is painted.
    setAttribute(Qt::WA_OpaquePaintEvent);
    setPalette(skinPalette());
}

void VNPromptView::drawRect(QPainter &view)
{
    paintPromptBackground(view, rect());
}

void VNPromptView::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    drawRect(painter);
}

} // namespace vornic
