#include "controls/slider_access.h"

#include "controls/VNSliderCell.h"

#include <QLocale>

namespace vornic {

SliderAccess::SliderAccess(VNSliderCell *slider)
    : QAccessibleWidget(slider, QAccessible::Slider)
{
}

VNSliderCell &SliderAccess::slider() const
{
    return *static_cast<VNSliderCell *>(widget());
}

QString SliderAccess::text(QAccessible::Text kind) const
{
    return kind == QAccessible::Value ? slider().locale().toString(slider().doubleValue())
                                      : QAccessibleWidget::text(kind);
}

void *SliderAccess::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::ValueInterface)
        return static_cast<QAccessibleValueInterface *>(this);
    return QAccessibleWidget::interface_cast(type);
}

QVariant SliderAccess::currentValue() const
{
    return slider().doubleValue();
}

void SliderAccess::setCurrentValue(const QVariant &value)
{
    slider().setDoubleValue(value.toDouble());
}

QVariant SliderAccess::maximumValue() const
{
    return slider().maxValue();
}

QVariant SliderAccess::minimumValue() const
{
    return slider().minValue();
}

QVariant SliderAccess::minimumStepSize() const
{
    return slider().step();
}

} // namespace vornic
