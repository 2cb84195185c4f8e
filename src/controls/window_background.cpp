#include "controls/window_background.h"

#include "controls/skin_colors.h"

#include <QPainter>

namespace vornic {

void WindowBackground::paintEvent(QPaintEvent *event)
{
    VNPromptView::paintEvent(event);
    QPainter painter(this);
    painter.fillRect(rect(), skin::windowShade());
}

} // namespace vornic
