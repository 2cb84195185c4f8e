#pragma once

#include "controls/VNTextFieldCell.h"

namespace vornic {

/// A field that takes the keys that are pressed in it as one combination for the whole desktop.
///
/// Made by whoever builds a window, as a child of it; main thread only. Tab leaves it, Backspace and Delete
/// empty it.
class ShortcutField : public VNTextFieldCell
{
    Q_OBJECT
public:
    explicit ShortcutField(QWidget *parent = nullptr);

    /// As QKeySequence writes it portably; empty: none.
    [[nodiscard]] const QString &shortcut() const { return m_shortcut; }
    /// Sends no signal.
    void setShortcut(const QString &portable);

signals:
    /// The user has pressed \a portable, which setShortcut() was not told of.
    void chosen(const QString &portable);
    /// The user has pressed keys that other programs need for themselves.
    void refused();

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QString m_shortcut;
};

} // namespace vornic
