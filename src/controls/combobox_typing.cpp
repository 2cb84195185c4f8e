#include "controls/combobox_typing.h"

#include <algorithm>

namespace vornic {

qint64 titleForTyping(const QStringList &titles, const QString &typed, qint64 current)
{
    if (typed.isEmpty() || titles.isEmpty())
        return -1;
    const bool isOneLetter = std::all_of(
        typed.begin(), typed.end(), [&](QChar letter) { return letter.toLower() == typed[0].toLower(); });
    const QString beginning = isOneLetter ? typed.left(1) : typed;
    // A single letter moves on to the next title; several may still match the one that is selected.
    const qint64 known = current < titles.size() ? current : -1;
    const qint64 first = std::max<qint64>(0, isOneLetter ? known + 1 : known);
    for (qint64 step = 0; step < titles.size(); ++step) {
        const qint64 index = (first + step) % titles.size();
        if (titles[index].startsWith(beginning, Qt::CaseInsensitive))
            return index;
    }
    return -1;
}

} // namespace vornic
