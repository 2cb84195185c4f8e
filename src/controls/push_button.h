#pragma once

#include <QFont>
#include <QIcon>
#include <QPushButton>

namespace vornic {

/// What a push button shows; enough to paint it without a widget.
struct PushButtonLook {
    QString text;
    QFont font;
    QIcon icon;
    int iconSide = 0;       ///< in points; 0: no icon
    int mnemonic = 0;       ///< Qt::TextShowMnemonic or Qt::TextHideMnemonic
    bool isDefault = false; ///< the one that Enter presses
    bool isEnabled = true;
    bool isHovered = false;
    bool isDown = false;
    bool hasFocus = false;
};

void paintPushButton(QPainter &painter, const QRectF &bounds, const PushButtonLook &look);

/// A push button in the greys of the list buttons, blue when it is the window's default.
///
/// Made by whoever builds a window, as a child of it; main thread only. All but its looks is the toolkit's;
/// it shows no arrow for a menu.
class PushButton : public QPushButton
{
    Q_OBJECT
public:
    explicit PushButton(QWidget *parent = nullptr);
    explicit PushButton(const QString &text, QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    [[nodiscard]] PushButtonLook look() const;
};

} // namespace vornic
