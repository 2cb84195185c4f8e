#pragma once

#include <QAccessibleWidget>

namespace vornic {

class LevelMeter;

/// What assistive programs learn of a level meter: its value, which they read when they are asked to, because one that
/// changes twenty times a second is nothing to be told of by itself.
///
/// Made by the toolkit when an assistive program asks for it; main thread only.
class LevelAccess : public QAccessibleWidget, public QAccessibleValueInterface
{
public:
    explicit LevelAccess(LevelMeter *meter);

    [[nodiscard]] QString text(QAccessible::Text kind) const override;
    [[nodiscard]] void *interface_cast(QAccessible::InterfaceType type) override;

    [[nodiscard]] QVariant currentValue() const override;
    void setCurrentValue(const QVariant & /*value*/) override { }
    [[nodiscard]] QVariant maximumValue() const override { return 0; }
    [[nodiscard]] QVariant minimumValue() const override;
    [[nodiscard]] QVariant minimumStepSize() const override { return 1; }

private:
    [[nodiscard]] const LevelMeter &meter() const;
};

} // namespace vornic
