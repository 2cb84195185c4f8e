#include "capture/spool/recording_description.h"

#include "base/keyed_archive.h"
#include "base/native_path.h"

#include <QTimeZone>

#include <array>
#include <utility>

namespace vornic {

namespace {

constexpr std::int32_t version = 1;

constexpr QLatin1StringView versionKey("version");
constexpr QLatin1StringView startKey("start");
constexpr QLatin1StringView monotonicStartKey("monotonicStart");
constexpr QLatin1StringView rectangleKey("rectangle");
constexpr QLatin1StringView isPartKey("isPart");
constexpr QLatin1StringView qualityKey("quality");
constexpr QLatin1StringView movieKey("movie");

constexpr QLatin1StringView filenameKey("filename");
constexpr QLatin1StringView formatKey("format");
constexpr QLatin1StringView widthKey("width");
constexpr QLatin1StringView heightKey("height");
constexpr QLatin1StringView videoCodecKey("videoCodecID");
constexpr QLatin1StringView frameRateKey("frameRate");
constexpr QLatin1StringView videoBitrateKey("videoBitrate");
constexpr QLatin1StringView audioCodecKey("audioCodecID");
constexpr QLatin1StringView samplerateKey("samplerate");
constexpr QLatin1StringView channelsKey("numberOfChannels");
constexpr QLatin1StringView sampleFormatKey("sampleFormat");
/// Of the sound tracks, in their order; missing where there is one, which has no title.
constexpr std::array trackTitleKeys { QLatin1StringView("audioTrack.1"), QLatin1StringView("audioTrack.2") };

void encodeMovie(const PKMuxerContext &movie, KeyedArchiver &archiver)
{
    archiver.encodeData(filenameKey, nativePath(movie.filename()));
    archiver.encodeInt32(formatKey, movie.format());
    archiver.encodeInt32(widthKey, movie.width());
    archiver.encodeInt32(heightKey, movie.height());
    archiver.encodeInt32(videoCodecKey, movie.videoCodecID());
    archiver.encodeDouble(frameRateKey, movie.frameRate());
    archiver.encodeInt32(videoBitrateKey, movie.videoBitrate());
    archiver.encodeInt32(audioCodecKey, movie.audioCodecID());
    archiver.encodeInt32(samplerateKey, movie.samplerate());
    archiver.encodeInt32(channelsKey, movie.numberOfChannels());
    archiver.encodeInt32(sampleFormatKey, movie.sampleFormat());
    for (std::size_t i = 0; i < trackTitleKeys.size() && std::cmp_less(i, movie.audioTracks().size()); ++i)
        archiver.encodeString(trackTitleKeys[i], movie.audioTracks().at(static_cast<qsizetype>(i)));
}

PKMuxerContext decodeMovie(const KeyedUnarchiver &unarchiver)
{
    // Recordings of earlier versions have a text.
    const std::optional<QByteArray> filename = unarchiver.decodeData(filenameKey);
    PKMuxerContext movie(filename ? pathFromNative(*filename)
                                  : unarchiver.decodeString(filenameKey).value_or(QString()),
                         unarchiver.decodeInt32(formatKey));
    movie.setWidth(unarchiver.decodeInt32(widthKey));
    movie.setHeight(unarchiver.decodeInt32(heightKey));
    movie.setVideoCodecID(unarchiver.decodeInt32(videoCodecKey));
    movie.setFrameRate(unarchiver.decodeDouble(frameRateKey));
    movie.setVideoBitrate(unarchiver.decodeInt32(videoBitrateKey));
    movie.setAudioCodecID(unarchiver.decodeInt32(audioCodecKey));
    movie.setSamplerate(unarchiver.decodeInt32(samplerateKey));
    movie.setNumberOfChannels(unarchiver.decodeInt32(channelsKey));
    movie.setSampleFormat(unarchiver.decodeInt32(sampleFormatKey));
    QStringList titles;
    for (const QLatin1StringView key : trackTitleKeys) {
        if (const std::optional<QString> title = unarchiver.decodeString(key))
            titles += *title;
    }
    movie.setAudioTracks(titles);
    return movie;
}

} // namespace

void RecordingDescription::encodeWithCoder(KeyedArchiver &archiver) const
{
    archiver.encodeInt32(versionKey, version);
    archiver.encodeInt64(startKey, start.toMSecsSinceEpoch());
    archiver.encodeDouble(monotonicStartKey, monotonicStart);
    archiver.encodeRect(rectangleKey, rectangle);
    archiver.encodeBool(isPartKey, isPart);
    archiver.encodeInt32(qualityKey, quality);
    if (movie)
        archiver.encodeObject(movieKey, [this](KeyedArchiver &nested) { encodeMovie(*movie, nested); });
}

std::optional<RecordingDescription> RecordingDescription::createWithCoder(const KeyedUnarchiver &unarchiver)
{
    if (unarchiver.decodeInt32(versionKey) != version)
        return std::nullopt;
    RecordingDescription description;
    description.start = QDateTime::fromMSecsSinceEpoch(unarchiver.decodeInt64(startKey), QTimeZone::utc());
    description.monotonicStart = unarchiver.decodeDouble(monotonicStartKey);
    description.rectangle = unarchiver.decodeRect(rectangleKey);
    description.isPart = unarchiver.decodeBool(isPartKey);
    description.quality = unarchiver.decodeInt32(qualityKey);
    if (const auto movie = unarchiver.decodeObject(movieKey))
        description.movie = decodeMovie(*movie);
    return description;
}

} // namespace vornic
