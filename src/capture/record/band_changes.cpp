#include "capture/record/band_changes.h"

#include "capture/jpeg/jpeg_bands.h"

#include <QtEndian>

#include <algorithm>

namespace vornic {

namespace {

constexpr qsizetype headLength = 6;
constexpr qsizetype entryLength = 6;

template<typename Number>
void append(QByteArray &bytes, Number number)
{
    const Number stored = qToBigEndian(number);
    bytes.append(reinterpret_cast<const char *>(&stored), sizeof stored);
}

template<typename Number>
Number numberAt(QByteArrayView bytes, qsizetype position)
{
    return qFromBigEndian<Number>(bytes.data() + position);
}

} // namespace

QByteArray BandChanges::head(const JpegBands &picture, const std::vector<bool> &changed)
{
    QByteArray head;
    append(head, static_cast<quint16>(picture.size.width()));
    append(head, static_cast<quint16>(picture.size.height()));
    append(head, static_cast<quint16>(std::count(changed.begin(), changed.end(), true)));
    for (std::size_t i = 0; i < changed.size(); ++i) {
        if (!changed[i])
            continue;
        append(head, static_cast<quint16>(i));
        append(head, static_cast<quint32>(picture.bands[i].size()));
    }
    return head;
}

std::optional<BandChanges> BandChanges::read(const QByteArray &bytes)
{
    if (bytes.size() < headLength)
        return std::nullopt;
    BandChanges changes;
    changes.size = QSize(numberAt<quint16>(bytes, 0), numberAt<quint16>(bytes, 2));
    const qsizetype count = numberAt<quint16>(bytes, 4);
    if (bytes.size() < headLength + count * entryLength)
        return std::nullopt;
    QByteArrayView rest = QByteArrayView(bytes).sliced(headLength + count * entryLength);
    changes.bands.reserve(static_cast<std::size_t>(count));
    for (qsizetype entry = headLength; entry < headLength + count * entryLength; entry += entryLength) {
        const int place = numberAt<quint16>(bytes, entry);
        const qsizetype length = numberAt<quint32>(bytes, entry + 2);
        const bool isAscending = changes.bands.empty() || changes.bands.back().first < place;
        if (!isAscending || length > rest.size())
            return std::nullopt;
        changes.bands.emplace_back(place, rest.first(length));
        rest = rest.sliced(length);
    }
    return rest.isEmpty() ? std::optional(std::move(changes)) : std::nullopt;
}

} // namespace vornic
