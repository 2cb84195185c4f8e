#include "codec/movie_writer.h"

#include "base/PKTimebase.h"
#include "codec/PKAudioFrame2.h"
#include "codec/PKMuxerContext.h"
#include "codec/PKVideoFrame2.h"
#include "codec/audio_encoder.h"
#include "codec/frame_conformer.h"
#include "codec/frame_reader.h"
#include "codec/frame_timeline.h"
#include "codec/movie_contents.h"
#include "codec/movie_failure.h"
#include "codec/movie_file.h"
#include "codec/movie_proof.h"
#include "codec/video_encoder.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <optional>
#include <vector>

namespace vornic {

namespace {

using ConstFrame = std::shared_ptr<const PKVideoFrame2>;

/// Joins source, encoders and file for one movie; lives inside writeMovie() on its thread.
class MovieWriter
{
public:
    MovieWriter(const PKMuxerContext &context,
                PKMuxerTaskDataSource &source,
                const ProgressSink &progress,
                const std::stop_token &stop)
        : m_source(source)
        , m_progress(progress)
        , m_stop(stop)
        , m_conformer({ context.width(), context.height() })
        , m_replaced(context.replacedFile())
        , m_file(context.filename(), stop)
        , m_video(context)
        , m_videoTrack(m_file.addTrack(m_video.codec()))
        , m_length(source.PKMuxerTaskLength())
    {
        if (context.audioCodecID() != PKMuxerContext::audioCodecNone)
            addSounds(context);
        m_file.writeHeader();
        m_contents.pictureSize = { m_video.codec().width, m_video.codec().height };
    }

    MovieStatistics write()
    {
        encodeFrames();
        encodeAudio(std::nullopt);
        for (const auto &sound : m_sounds) {
            sound->encoder.finish(sound->sink);
            m_contents.sounds.push_back({ sound->encoder.codec().ch_layout.nb_channels,
                                          sound->encoder.codec().sample_rate,
                                          sound->encoder.samples(),
                                          sound->last });
            m_statistics.audioSeconds = sound->encoder.seconds();
        }
        m_video.finish(m_videoSink);
        m_statistics.file = m_file.complete(m_contents, m_replaced);
        m_statistics.framesSkipped += m_framesUnusable;
        return m_statistics;
    }

private:
    /// One track of sound; all have the same times.
    struct Sound {
        explicit Sound(int codecId)
            : encoder(codecId)
        {
        }

        AudioEncoder encoder;
        int track = 0;
        QByteArray last; ///< MovieProof::endingOf() the last packet
        PacketSink sink;
    };

    void addSounds(const PKMuxerContext &context)
    {
        const QStringList &titles = context.audioTracks();
        for (qsizetype i = 0; i < std::max<qsizetype>(titles.size(), 1); ++i) {
            Sound &sound = *m_sounds.emplace_back(std::make_unique<Sound>(context.audioCodecID()));
            sound.track = titles.isEmpty() ? m_file.addTrack(sound.encoder.codec())
                                           : m_file.addTrack(sound.encoder.codec(), titles.at(i), i == 0);
            sound.sink = [this, &sound](AVPacket &packet) {
                sound.last = MovieProof::endingOf({ packet.data, packet.size });
                m_file.mux(packet, sound.track, sound.encoder.timeBase());
            };
        }
    }

    void addBlock(const PKAudioFrame2 &block)
    {
        if (m_sounds.size() == 1) {
            m_sounds.front()->encoder.add(block, m_sounds.front()->sink);
            return;
        }
        for (std::size_t i = 0; i < m_sounds.size(); ++i) {
            const auto pair = block.channels(static_cast<std::int32_t>(2 * i), 2);
            m_sounds[i]->encoder.add(*pair, m_sounds[i]->sink);
        }
    }

    void encodeFrames()
    {
        FrameReader reader([this] { return readFrame(); }, m_stop);
        FrameTimeline timeline([this, &reader] { return nextFrame(reader); });
        std::optional<FrameTimeline::Shown> shown = timeline.next();
        if (!shown)
            throw MovieFailure({ ErrorKind::Empty, ErrorSubject::Recording, {}, {} });
        m_contents.begin = shown->frame->timeStamp();
        for (; shown; shown = timeline.next()) {
            encodeAudio(shown->frame->timeStamp());
            m_video.encode(*shown, m_videoSink);
            ++m_contents.frames;
            m_contents.end = shown->end;
            m_statistics.framesWritten += shown->frames;
        }
        m_statistics.framesSkipped = timeline.framesSkipped();
    }

    /// Reader's thread: the next frame that has a picture, in the movie's size.
    ConstFrame readFrame()
    {
        while (!m_stop.stop_requested()) {
            const auto frame = m_source.PKMuxerTaskGetVideoFrame();
            if (!frame)
                break;
            if (auto conformed = m_conformer.conform(frame))
                return conformed;
            ++m_framesUnusable;
        }
        return nullptr;
    }

    ConstFrame nextFrame(FrameReader &reader)
    {
        ConstFrame frame = reader.next();
        m_file.checkNotCancelled(); // what looks like the end of the recording may be none
        return frame;
    }

    /// Encodes sound up to \a endTicks, or all that is left.
    void encodeAudio(std::optional<std::int64_t> endTicks)
    {
        const auto isWanted = [&] {
            return !endTicks
                || m_sounds.front()->encoder.seconds() * static_cast<double>(PKTimebase)
                <= static_cast<double>(*endTicks);
        };
        while (!m_sounds.empty() && !m_audioHasEnded && isWanted()) {
            const auto block = m_source.PKMuxerTaskGetAudioFrame();
            if (block)
                addBlock(*block);
            m_audioHasEnded = !block;
        }
    }

    void muxVideoPacket(AVPacket &packet)
    {
        const std::int64_t end = packet.pts + packet.duration;
        m_contents.lastFrame = MovieProof::endingOf({ packet.data, packet.size });
        m_file.mux(packet, m_videoTrack, m_video.timeBase());
        m_statistics.seconds = std::max(m_statistics.seconds, static_cast<double>(end) / PKTimebase);
        tellProgress(end);
    }

    /// Everything before \a end is in the file.
    void tellProgress(std::int64_t end)
    {
        std::optional<double> share = m_source.shareOfWork(end);
        if (!share && m_length > 0)
            share = static_cast<double>(end) / static_cast<double>(m_length);
        if (share)
            m_progress(100 * std::clamp(*share, 0.0, 1.0));
    }

    PKMuxerTaskDataSource &m_source;
    const ProgressSink &m_progress;
    std::stop_token m_stop;
    FrameConformer m_conformer; ///< reader's thread only
    std::atomic<std::int64_t> m_framesUnusable = 0;
    std::optional<FileIdentity> m_replaced;
    MovieFile m_file;
    VideoEncoder m_video;
    std::vector<std::unique_ptr<Sound>> m_sounds; ///< empty where the movie has none
    int m_videoTrack;
    std::int64_t m_length; ///< of the recording, ticks
    bool m_audioHasEnded = false;
    MovieStatistics m_statistics;
    MovieContents m_contents;
    PacketSink m_videoSink = [this](AVPacket &packet) { muxVideoPacket(packet); };
};

} // namespace

MovieStatistics writeMovie(const PKMuxerContext &context,
                           PKMuxerTaskDataSource &source,
                           const ProgressSink &progress,
                           const std::stop_token &stop)
{
    if (context.format() != PKMuxerContext::formatMp4) {
        throw MovieFailure(
            { ErrorKind::Unsupported, ErrorSubject::MovieFormat, QString::number(context.format()), {} });
    }
    return MovieWriter(context, source, progress, stop).write();
}

} // namespace vornic
