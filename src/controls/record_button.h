#pragma once

#include <QFont>
#include <QPushButton>
#include <QRectF>

namespace vornic {

/// What the record button shows; enough to paint it without a widget.
struct RecordButtonLook {
    QString text;
    QFont font;       ///< of the text as it is drawn
    int mnemonic = 0; ///< Qt::TextShowMnemonic or Qt::TextHideMnemonic
    bool isEnabled = true;
    bool isHovered = false;
    bool isDown = false;
    bool hasFocus = false;
};

/// Where the disc is, beside a text of \a textWidth points.
[[nodiscard]] QRectF recordDiscRect(const QRectF &bounds, double textWidth);
void paintRecordButton(QPainter &painter, const QRectF &bounds, const RecordButtonLook &look);

/// The red button with a white disc that starts a recording; as wide as there is room.
///
/// Made by whoever builds a window, as a child of it; main thread only. All but its looks is the toolkit's;
/// its text is bold and larger than its font().
class RecordButton : public QPushButton
{
    Q_OBJECT
public:
    explicit RecordButton(QWidget *parent = nullptr);
    explicit RecordButton(const QString &text, QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    [[nodiscard]] RecordButtonLook look() const;
};

} // namespace vornic
