#include "controls/duration_field.h"

#include <QLineEdit>
#include <QRegularExpression>

namespace vornic {

namespace {

constexpr int minute = 60;
constexpr int hour = 60 * minute;

} // namespace

DurationField::DurationField(QWidget *parent)
    : NumberField(parent)
{
    setDecimals(0);
    setRange(1, 100.0 * hour - 1);
}

void DurationField::stepBy(int steps)
{
    const QLineEdit &edit = *lineEdit();
    const qsizetype partsBehind = edit.text().sliced(edit.cursorPosition()).count(u':');
    const bool isWhole = edit.hasSelectedText() || !hasFocus();
    const int step = isWhole || partsBehind == 1 ? minute : partsBehind == 2 ? hour : 1;
    const int position = edit.cursorPosition();
    setValue(value() + steps * step);
    if (isWhole)
        selectAll();
    else
        lineEdit()->setCursorPosition(position);
}

QString DurationField::textFromValue(double seconds) const
{
    const int whole = qRound(seconds);
    const QLatin1Char zero('0');
    return QStringLiteral("%1:%2:%3")
        .arg(whole / hour)
        .arg(whole % hour / minute, 2, 10, zero)
        .arg(whole % minute, 2, 10, zero);
}

double DurationField::valueFromText(const QString &text) const
{
    double seconds = 0;
    for (const QString &part : text.split(u':'))
        seconds = seconds * minute + part.toInt();
    return seconds;
}

QValidator::State DurationField::validate(QString &text, int & /*position*/) const
{
    static const QRegularExpression whole(QStringLiteral(R"(^\d{1,6}(:\d{1,2}){0,2}$)"));
    static const QRegularExpression begun(QStringLiteral(R"(^[\d:]{0,9}$)"));
    if (!begun.match(text).hasMatch())
        return QValidator::Invalid;
    if (!whole.match(text).hasMatch())
        return QValidator::Intermediate;
    const double seconds = valueFromText(text);
    return seconds < minimum() || seconds > maximum() ? QValidator::Intermediate : QValidator::Acceptable;
}

} // namespace vornic
