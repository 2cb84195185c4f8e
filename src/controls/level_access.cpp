#include "controls/level_access.h"

#include "controls/level_meter.h"

namespace vornic {

LevelAccess::LevelAccess(LevelMeter *meter)
    : QAccessibleWidget(meter, QAccessible::ProgressBar)
{
}

const LevelMeter &LevelAccess::meter() const
{
    return *static_cast<LevelMeter *>(widget());
}

QString LevelAccess::text(QAccessible::Text kind) const
{
    if (kind != QAccessible::Value)
        return QAccessibleWidget::text(kind);
    return meter().isListening() ? QStringLiteral("%1 dBFS").arg(meter().held()) : QString();
}

void *LevelAccess::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::ValueInterface)
        return static_cast<QAccessibleValueInterface *>(this);
    return QAccessibleWidget::interface_cast(type);
}

QVariant LevelAccess::currentValue() const
{
    return meter().level();
}

QVariant LevelAccess::minimumValue() const
{
    return static_cast<int>(LevelBallistics::lowest);
}

} // namespace vornic
