#pragma once

#include <QAccessibleWidget>

namespace vornic {

class VNSliderCell;

/// What assistive programs learn of a slider: its values in its own unit, not in steps.
///
/// Made by the toolkit when an assistive program asks for it; main thread only.
class SliderAccess : public QAccessibleWidget, public QAccessibleValueInterface
{
public:
    explicit SliderAccess(VNSliderCell *slider);

    [[nodiscard]] QString text(QAccessible::Text kind) const override;
    [[nodiscard]] void *interface_cast(QAccessible::InterfaceType type) override;

    [[nodiscard]] QVariant currentValue() const override;
    void setCurrentValue(const QVariant &value) override;
    [[nodiscard]] QVariant maximumValue() const override;
    [[nodiscard]] QVariant minimumValue() const override;
    [[nodiscard]] QVariant minimumStepSize() const override;

private:
    [[nodiscard]] VNSliderCell &slider() const;
};

} // namespace vornic
