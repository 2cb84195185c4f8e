#pragma once

#include "app/session/movie_work.h"
#include "app/session/spooled_sound.h"
#include "codec/PKMuxerTaskDataSource.h"

#include <QString>
#include <QVariant>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace vornic {

class FrameComposer;
class PKMuxerTask;
class VNBufferMgr;
class VNLogoContext;
struct Recording;

/// One attempt to write a recording's movie: pops frames and sound out of the spool, composes them, and hands
/// them to the encoder.
///
/// Made by MovieMaker on the main thread, for each attempt anew, and kept until the job has reported its
/// end; the PKMuxerTask… functions run on the encoder's threads.
class MovieJob final : public PKMuxerTaskDataSource
{
public:
    /// Borrows \a spool and \a logo.
    MovieJob(std::shared_ptr<const Recording> recording, VNBufferMgr &spool, VNLogoContext *logo);
    ~MovieJob() override;

    /// Starts writing, with the spool's muxer context. \a report is what a PKMuxerTask tells.
    void start(std::function<void(const QString &action, const QVariant &value)> report);

    /// Ends the writing soon; the task still reports its end. Nothing where it has ended. Main thread.
    void cancel();
    /// Whether the movie stands under its name, also where that has not been reported yet. After cancel(); waits for what
    /// still runs, two seconds at most.
    [[nodiscard]] bool hasMovie() const;

    /// Frames that hold no readable picture.
    [[nodiscard]] std::uint64_t unusableFrameCount() const { return m_unusableFrames; }

    [[nodiscard]] std::int64_t PKMuxerTaskLength() override;
    [[nodiscard]] std::shared_ptr<const PKVideoFrame2> PKMuxerTaskGetVideoFrame() override;
    [[nodiscard]] std::shared_ptr<const PKAudioFrame2> PKMuxerTaskGetAudioFrame() override;
    [[nodiscard]] std::optional<double> shareOfWork(std::int64_t ticks) override;

private:
    [[nodiscard]] std::uint64_t lastDuration(std::uint64_t timestamp) const;

    std::shared_ptr<const Recording> m_recording;
    VNBufferMgr &m_spool;
    VNLogoContext *m_logo;
    std::unique_ptr<FrameComposer> m_composer;
    SpooledSound m_sound;
    MovieWork m_work;                      ///< since start(), and the same from then on
    std::atomic<double> m_picturesEnd = 0; ///< of those that were handed out, seconds
    std::weak_ptr<PKMuxerTask> m_task;     ///< keeps itself alive until it has reported its end
    std::atomic<std::uint64_t> m_unusableFrames = 0;
    std::atomic<bool> m_isCancelled = false;
};

} // namespace vornic
