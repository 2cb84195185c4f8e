#pragma once

#include <QPushButton>

namespace vornic {

/// Any push button as PushButton looks, and how large it is then.
void paintPushButton(QPainter &painter, const QPushButton &button);
[[nodiscard]] QSize pushButtonSize(const QPushButton &button);

/// A push button in the greys of the list buttons, blue when it is the window's default.
///
/// Made by whoever builds a window, as a child of it; main thread only. Its behaviour is the toolkit's;
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
};

} // namespace vornic
