#pragma once

#include "controls/target_action.h"

#include <QColor>
#include <QRectF>
#include <QWidget>

class QColorDialog;

namespace vornic {

/// What a colour well shows; enough to paint it without a widget.
struct ColorWellLook {
    QColor color;
    bool isEnabled = true;
    bool mouseButtonIsDown = false;
    bool hasFocus = false;
};

[[nodiscard]] QRectF colorWellSwatch(const QRectF &bounds);
void paintColorWell(QPainter &painter, const QRectF &bounds, const ColorWellLook &look);

/// A button of 103 x 28 points that shows a colour and opens the colour panel.
///
/// Made by whoever builds a window, as a child of it; main thread only. Space and Enter press it.
class VNColorWell : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
    /// The colour as text: "#rrggbb", with the opacity in front where it is not full.
    Q_PROPERTY(QString stringValue READ stringValue NOTIFY colorChanged)
public:
    explicit VNColorWell(QWidget *parent = nullptr);
    /// The size is always the same, here and in setFrame().
    explicit VNColorWell(const QRect &frame, QWidget *parent = nullptr);

    void setFrame(const QRect &frame);
    [[nodiscard]] bool acceptsFirstResponder() const { return true; }

    [[nodiscard]] QColor color() const { return mColor; }
    /// Sends no action.
    void setColor(const QColor &color);
    [[nodiscard]] QString stringValue() const;
    /// Takes over the panel's colour and sends the action, also while the well is disabled.
    void changeColor(const QColorDialog &sender);

    /// Borrowed; called when the user chooses.
    void setTarget(QObject *target) { m_action.setTarget(target); }
    /// The name of the function of the target that is called, with this well.
    void setSelector(const QByteArray &selector) { m_action.setSelector(selector); }

    void drawRect(QPainter &view);
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

public slots:
    /// Opens the colour panel for this well.
    void popUp();

signals:
    void colorChanged();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QColor mColor = Qt::black;
    TargetAction m_action;
};

} // namespace vornic
