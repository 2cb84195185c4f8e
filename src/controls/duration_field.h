#pragma once

#include "controls/number_field.h"

namespace vornic {

/// A field for a length of time in whole seconds, shown as hours, minutes and seconds: "1:30:00".
///
/// Made by whoever builds a window, as a child of it; main thread only. What is typed is read from its end, so that "90"
/// is a minute and a half and "2:00" two minutes. The arrows change the part that the insertion point is in, and the minutes
/// where all is selected.
class DurationField : public NumberField
{
    Q_OBJECT
public:
    explicit DurationField(QWidget *parent = nullptr);

    void stepBy(int steps) override;
    [[nodiscard]] QString textFromValue(double seconds) const override;
    [[nodiscard]] double valueFromText(const QString &text) const override;
    [[nodiscard]] QValidator::State validate(QString &text, int &position) const override;
};

} // namespace vornic
