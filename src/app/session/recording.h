#pragma once

#include "app/session/movie_size_limit.h"
#include "app/session/recorded_sound.h"
#include "app/session/recording_clock.h"
#include "capture/spool/recording_description.h"
#include "codec/movie_statistics.h"
#include "options/VNOption.h"

#include <QRectF>
#include <QString>

#include <atomic>
#include <cstdint>
#include <optional>

namespace vornic {

/// One recording: what was asked for at its start, and what has become of it.
///
/// Made anew for each by RecordingSession and shared with the threads that work for it. What is asked for is
/// never changed once they do; what has become of it belongs to the main thread but for the atomic ones.
struct Recording {
    Recording() = default;
    /// \a sound: there is an input to take it from.
    Recording(
        QString file, const VNOption &options, const QRectF &recorded, bool sound, RecordingClock::Now now)
        : path(std::move(file))
        , rectangle(recorded)
        , isPart(options.recordsRectangle())
        , quality(options.quality())
        , hasSound(options.enableAudio() && sound)
        , clock(hasSound ? RecordingClock::Origin::FirstSound : RecordingClock::Origin::FirstPass,
                std::move(now))
    {
    }

    /// One that an earlier run has left, for a movie in \a file.
    Recording(const RecordingDescription &description, QString file)
        : path(std::move(file))
        , rectangle(description.rectangle)
        , isPart(description.isPart)
        , quality(static_cast<RecordQuality>(description.quality))
        , clock(description.movie && description.movie->audioCodecID() != PKMuxerContext::audioCodecNone
                    ? RecordingClock::Origin::FirstSound
                    : RecordingClock::Origin::FirstPass)
        , isCaptured(true)
    {
    }

    /// What is still to be recorded behind \a timestamp, in whole seconds, rounded up; nothing where there is no limit.
    [[nodiscard]] std::optional<std::int64_t> secondsLeft(std::int64_t timestamp) const;

    QString path;        ///< of the movie; another one where it could not be put there
    QRectF rectangle;    ///< screen coordinates (y up), device pixels
    bool isPart = false; ///< a rectangle, not the full display
    RecordQuality quality = RecordQuality::High;
    bool hasSound = false; ///< is asked for, from an input that was there
    RecordingClock clock { RecordingClock::Origin::FirstPass };
    RecordedSound recordedSound { clock }; ///< on the recorder's thread

    bool isCaptured = false;         ///< passes run, or have run
    bool endsWithFirstFrame = false; ///< stopped before there was one
    bool isPutOff = false;           ///< its movie is made another time
    bool stopItemIsShown = false;
    bool soundWasLost = false;              ///< for a time, or to the end
    QString soundLostOfTwo;                 ///< the one that was, while the other was heard; empty for none
    std::optional<double> length;           ///< seconds; it ends by itself when it is so long
    bool isTimeOver = false;                ///< it ended because it was
    std::optional<std::int64_t> end;        ///< PKTimebase ticks; where it is as long as it was to be
    std::atomic<bool> isFullLength = false; ///< the capture ended there
    std::optional<MovieSizeLimit> sizeLimit;
    bool sizeIsReached = false;                   ///< by what was forecast
    bool isTooLarge = false;                      ///< the movie, for its limit
    std::atomic<std::uint64_t> framesGrabbed = 0; ///< kept in the spool
    MovieStatistics movie;                        ///< zeros until the movie is complete
    QString failure;                              ///< why there is no movie; empty where there is one
};

} // namespace vornic
