#pragma once

#include <QRectF>
#include <QWidget>

namespace vornic {

void paintPromptBackground(QPainter &painter, const QRectF &bounds);

/// The dark background of a window: grey, a little lighter at the top.
///
/// Made by whoever builds a window, around its controls, which take its palette; main thread only.
class VNPromptView : public QWidget
{
    Q_OBJECT
public:
    explicit VNPromptView(QWidget *parent = nullptr);

    void drawRect(QPainter &view);

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace vornic
