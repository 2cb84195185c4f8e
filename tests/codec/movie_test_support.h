#pragma once

#include "base/error.h"
#include "codec/PKAudioFrame2.h"
#include "codec/PKMuxerContext.h"
#include "codec/PKMuxerTaskDataSource.h"
#include "codec/PKVideoFrame2.h"
#include "codec/movie_statistics.h"

#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vornic {
class PKMuxerTask;
}

namespace vornic::testing {

/// Gives what it was filled with. Each hook, where set, runs first inside its callback.
class ListSource : public PKMuxerTaskDataSource
{
public:
    std::vector<std::shared_ptr<const PKVideoFrame2>> video;
    std::vector<std::shared_ptr<const PKAudioFrame2>> audio;
    std::int64_t length = 0;
    std::function<void()> onVideo;
    std::function<void()> onAudio;

    [[nodiscard]] std::int64_t PKMuxerTaskLength() override { return length; }
    [[nodiscard]] std::shared_ptr<const PKVideoFrame2> PKMuxerTaskGetVideoFrame() override;
    [[nodiscard]] std::shared_ptr<const PKAudioFrame2> PKMuxerTaskGetAudioFrame() override;

    /// Adds a frame at \a timeStamp and sets the length to its end.
    void add(const QImage &picture, std::int64_t timeStamp, std::int64_t duration);
    /// Adds \a count frames of a thirtieth of a second, each of another grey.
    void addGreys(QSize size, int count);

private:
    std::size_t m_nextVideo = 0;
    std::size_t m_nextAudio = 0;
};

/// What a task told its block.
struct TaskReport {
    QStringList actions;
    QVariantList values;
    bool wasOnMainThread = true; ///< every time

    [[nodiscard]] bool isComplete() const;
    /// Why there is no movie; without a value where there is one, or where no Error was told.
    [[nodiscard]] std::optional<Error> error() const;
    /// The error's, for messages of a test; empty where there is none.
    [[nodiscard]] std::string reason() const;
    /// Of the movie; all -1 when it failed.
    [[nodiscard]] MovieStatistics statistics() const;
};

/// High quality settings for a movie without sound.
PKMuxerContext videoContext(const QString &filename, QSize size);

/// Starts a task and runs the main thread's loop until it has ended, two minutes at most.
TaskReport runTask(const PKMuxerContext &context, PKMuxerTaskDataSource &source);
/// The same for a task that was made already.
TaskReport runTask(PKMuxerTask &task, PKMuxerTaskDataSource &source);
/// The same for several at once.
std::vector<TaskReport> runTasks(const std::vector<PKMuxerContext> &contexts,
                                 const std::vector<PKMuxerTaskDataSource *> &sources);

/// An application object without a display, for event loops and for drawing text, where there is none yet.
void ensureApplication();

/// What ffprobe says of a movie: "streams" and "packets".
QJsonObject probe(const QString &movie);
/// The same with "frames", for which all is decoded.
QJsonObject probeDecoded(const QString &movie);
/// The first stream of \a type ("video" or "audio") in a probe's answer; empty when there is none.
QJsonObject streamOf(const QJsonObject &probed, const QString &type);
/// Integers called \a name of the packets or frames (\a section) of one type, in file order.
QList<qint64>
numbersOf(const QJsonObject &probed, const QString &section, const QString &type, const QString &name);
/// When the key frames of what probeDecoded() told are shown, ticks.
QList<qint64> keyFrameTimes(const QJsonObject &probed);

/// The decoder's planes of all pictures, 4:2:0, one after the other.
QByteArray decodedPlanes(const QString &movie);
/// One decoded picture in RGB, converted by what the movie's own tags say.
QImage decodedPicture(const QString &movie, int number, QSize size);
/// The sound as interleaved 16-bit stereo of 48 kHz, from time 0 on.
std::vector<std::int16_t> decodedSound(const QString &movie);

/// One of the parts that a movie file is made of.
struct Box {
    QString name; ///< four letters
    qint64 size;  ///< bytes
};

/// A file's outermost boxes in file order.
QList<Box> boxesOf(const QString &movie);

QImage flat(QSize size, QColor color);

} // namespace vornic::testing
