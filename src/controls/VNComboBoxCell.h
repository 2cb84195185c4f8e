#pragma once

#include <QComboBox>
#include <QRectF>

namespace vornic {

/// Where a list button of the height 28 has its button, and its text, in points.
[[nodiscard]] QRectF popupButtonRect(const QRectF &frame);
[[nodiscard]] QRectF popupTextRect(const QRectF &frame);

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
    void paintEvent(QPaintEvent *event) override;
    void childEvent(QChildEvent *event) override;
};

} // namespace vornic
