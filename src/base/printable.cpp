#include "base/printable.h"

#include <algorithm>

namespace vornic {

namespace {

/// Marks, embeddings, overrides and isolates of the reading direction.
bool turnsDirection(char16_t unit)
{
    return unit == 0x061c || unit == 0x200e || unit == 0x200f || (unit >= 0x202a && unit <= 0x202e)
        || (unit >= 0x2066 && unit <= 0x2069);
}

bool isHarmless(QChar character)
{
    const QChar::Category category = character.category();
    const bool isHarmful = category == QChar::Other_Control || category == QChar::Other_Surrogate
        || category == QChar::Separator_Line || category == QChar::Separator_Paragraph;
    return !isHarmful && !turnsDirection(character.unicode());
}

QString writtenOut(QChar character)
{
    const char16_t unit = character.unicode();
    if (unit == u'\n')
        return QStringLiteral("\\n");
    if (unit == u'\r')
        return QStringLiteral("\\r");
    if (unit == u'\t')
        return QStringLiteral("\\t");
    // A byte of a file's name that is no character is half of a pair, so that it can be told from one.
    const bool isByte = unit < 0x100 || (unit >= 0xdc80 && unit <= 0xdcff);
    return isByte ? QStringLiteral("\\x%1").arg(unit & 0xff, 2, 16, QLatin1Char('0'))
                  : QStringLiteral("\\u%1").arg(unit, 4, 16, QLatin1Char('0'));
}

} // namespace

QString printable(const QString &text)
{
    if (std::ranges::all_of(text, isHarmless))
        return text;
    QString shown;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isPair = text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        if (isPair)
            shown += text.mid(i++, 2);
        else if (isHarmless(text[i]))
            shown += text[i];
        else
            shown += writtenOut(text[i]);
    }
    return shown;
}

} // namespace vornic
