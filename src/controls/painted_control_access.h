#pragma once

#include <QAccessibleWidget>

namespace vornic {

/// What assistive programs learn of, and may do with, a control that is painted from scratch.
///
/// Made by the toolkit when an assistive program asks for it; main thread only. The text of the control is
/// its property "stringValue", read-only; pressing it calls its slot popUp().
class PaintedControlAccess : public QAccessibleWidget, public QAccessibleTextInterface
{
public:
    /// Before the first control is shown; further calls do nothing.
    static void install();

    PaintedControlAccess(QWidget *control, QAccessible::Role role);

    [[nodiscard]] QString text(QAccessible::Text kind) const override;
    [[nodiscard]] QAccessible::State state() const override;
    [[nodiscard]] QStringList actionNames() const override;
    void doAction(const QString &name) override;
    [[nodiscard]] void *interface_cast(QAccessible::InterfaceType type) override;

    void selection(int index, int *startOffset, int *endOffset) const override;
    [[nodiscard]] int selectionCount() const override { return 0; }
    void addSelection(int /*startOffset*/, int /*endOffset*/) override { }
    void removeSelection(int /*index*/) override { }
    void setSelection(int /*index*/, int /*startOffset*/, int /*endOffset*/) override { }
    [[nodiscard]] int cursorPosition() const override { return 0; }
    void setCursorPosition(int /*position*/) override { }
    [[nodiscard]] QString text(int startOffset, int endOffset) const override;
    [[nodiscard]] int characterCount() const override;
    [[nodiscard]] QRect characterRect(int offset) const override;
    [[nodiscard]] int offsetAtPoint(const QPoint &point) const override;
    void scrollToSubstring(int /*startIndex*/, int /*endIndex*/) override { }
    QString attributes(int offset, int *startOffset, int *endOffset) const override;

private:
    [[nodiscard]] QString shownText() const;
};

} // namespace vornic
