#pragma once

#include <QPushButton>

namespace vornic {

/// The red button with a white disc that starts a recording, or with a square that stops it; as wide as there is room.
///
/// Made by whoever builds a window, as a child of it; main thread only. Its behaviour is the toolkit's;
/// its text is bold and larger than its font().
class RecordButton : public QPushButton
{
    Q_OBJECT
public:
    explicit RecordButton(QWidget *parent = nullptr);
    explicit RecordButton(const QString &text, QWidget *parent = nullptr);

    [[nodiscard]] bool stops() const { return m_stops; }
    void setStops(bool stops);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    /// Of the text as it is drawn.
    [[nodiscard]] QFont largeFont() const;

    bool m_stops = false;
};

} // namespace vornic
