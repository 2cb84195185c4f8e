#pragma once

#include <QLabel>
#include <QStringList>

namespace vornic {

/// One line of plain text in the room that it is given: what is too long loses its middle, and is the tool tip.
///
/// Made by whoever builds a window, as a child of it; main thread only. It asks for no width, so that no text
/// widens the window.
class ElidedLabel : public QLabel
{
    Q_OBJECT
public:
    explicit ElidedLabel(QWidget *parent = nullptr);

    /// \a details are the lines of the tool tip; without, it is the text where that does not fit.
    void showText(const QString &text, const QStringList &details = {});
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void showToolTip();

    QString m_details;
};

} // namespace vornic
