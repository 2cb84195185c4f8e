#include "decoded_movie.h"

#include "codec/PKVideoFrame2.h"
#include "movie_test_support.h"

#include <QJsonObject>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>

namespace vornic::testing {

std::vector<TimedPicture> decodedMovie(const QString &movie)
{
    const QJsonObject probed = probeDecoded(movie);
    const auto numbers = [&probed](const QString &name) {
        return numbersOf(probed, QStringLiteral("frames"), QStringLiteral("video"), name);
    };
    const QList<qint64> times = numbers(QStringLiteral("pts"));
    const QList<qint64> keys = numbers(QStringLiteral("key_frame"));
    const QByteArray planes = decodedPlanes(movie);
    if (times.isEmpty() || planes.size() % times.size() != 0) {
        ADD_FAILURE() << times.size() << " pictures are told, " << planes.size() << " bytes decoded";
        return {};
    }
    const qsizetype each = planes.size() / times.size();
    std::vector<TimedPicture> pictures;
    for (qsizetype i = 0; i < times.size(); ++i)
        pictures.push_back({ times[i], planes.mid(i * each, each), keys[i] == 1 });
    return pictures;
}

TimedPicture pictureOf(const PKVideoFrame2 &frame)
{
    TimedPicture picture { frame.timeStamp(), {}, false };
    for (int plane = 0; plane < 3; ++plane) {
        const int shrunk = plane == 0 ? 1 : 2;
        for (int y = 0; y < frame.codeHeight() / shrunk; ++y)
            picture.planes.append(
                reinterpret_cast<const char *>(frame.planeData(plane) + y * frame.planeStride(plane)),
                frame.codeWidth() / shrunk);
    }
    return picture;
}

const TimedPicture &shownAt(const std::vector<TimedPicture> &pictures, std::int64_t ticks)
{
    const auto after = std::ranges::upper_bound(pictures, ticks, {}, &TimedPicture::ticks);
    return after == pictures.begin() ? pictures.front() : *std::prev(after);
}

double lumaError(const TimedPicture &a, const TimedPicture &b, QSize size)
{
    const qsizetype count = qsizetype { size.width() } * size.height();
    std::int64_t squares = 0;
    for (qsizetype i = 0; i < count; ++i) {
        const int difference = static_cast<uchar>(a.planes[i]) - static_cast<uchar>(b.planes[i]);
        squares += difference * difference;
    }
    return static_cast<double>(squares) / static_cast<double>(count);
}

double decibels(double error)
{
    constexpr double none = 100;
    return error > 0 ? 10 * std::log10(255.0 * 255.0 / error) : none;
}

double Differences::partAbove(int levels) const
{
    const auto more = std::accumulate(counts.begin() + levels + 1, counts.end(), std::int64_t { 0 });
    const auto all = std::accumulate(counts.begin(), counts.end(), std::int64_t { 0 });
    return static_cast<double>(more) / static_cast<double>(all);
}

Differences differencesOutside(const TimedPicture &a, const TimedPicture &b, QSize size, const QRect &left)
{
    Differences found;
    qsizetype at = 0;
    for (int plane = 0; plane < 3; ++plane) {
        const int shrunk = plane == 0 ? 1 : 2;
        const QRect hole(left.topLeft() / shrunk, left.size() / shrunk);
        for (int y = 0; y < size.height() / shrunk; ++y)
            for (int x = 0; x < size.width() / shrunk; ++x, ++at) {
                if (hole.contains(x, y))
                    continue;
                const int difference = static_cast<uchar>(a.planes[at]) - static_cast<uchar>(b.planes[at]);
                ++found.counts[static_cast<std::size_t>(std::abs(difference))];
            }
    }
    return found;
}

} // namespace vornic::testing
