#pragma once

#include "controls/skin_painting.h"

#include <QComboBox>
#include <QRectF>

namespace vornic {

/// Where a list button of the height 28 has its button, and its text, in points.
[[nodiscard]] QRectF popupButtonRect(const QRectF &frame);
[[nodiscard]] QRectF popupTextRect(const QRectF &frame);
/// How a list button shows \a title: of what is too long, the middle is left out, because names of devices differ at
/// either end.
[[nodiscard]] SkinText popupText(const QString &title, const QFont &font, bool isEnabled);
/// What a list button that is \a width points wide tells the mouse: its title where it is not shown whole, and
/// \a toolTip.
[[nodiscard]] QString popupToolTip(const SkinText &title, int width, const QString &toolTip);

/// A list, or a text field with a list, drawn from pictures; its behaviour is the toolkit's.
///
/// Made by whoever builds a window, as a child of it; main thread only.
class VNComboBoxCell : public QComboBox
{
    Q_OBJECT
public:
    explicit VNComboBoxCell(QWidget *parent = nullptr);

    /// The text of an editable list is painted by its editor.
    void drawWithFrame(const QRectF &frame, QPainter &view);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void childEvent(QChildEvent *event) override;

private:
    [[nodiscard]] SkinText shownText() const;
};

} // namespace vornic
