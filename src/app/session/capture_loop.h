#pragma once

#include "base/memory_reserve.h"

#include <QRectF>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <stop_token>

namespace vornic {

class AudioInput;
class BitmapImage;
class SerialQueue;
class VNBufferMgr;
class VNCGDisplay;
struct Recording;

/// The capture passes of one recording: each grabs, stamps and spools a picture and queues the next, with a
/// pause of one over the frame rate between them.
///
/// Made by RecordingSession for each recording; the passes run on the capture queue. What they tell goes to the
/// main thread. A queued pass keeps the loop alive.
class CaptureLoop : public std::enable_shared_from_this<CaptureLoop>
{
public:
    /// Hears of the passes; on the main thread.
    class Listener
    {
    public:
        /// A picture is kept; the pass waits until this returns. \a timestamp in PKTimebase ticks.
        virtual void frameKept(std::int64_t timestamp) = 0;
        /// No picture has been kept for a second, because no sound has come.
        virtual void soundAwaited() = 0;
        /// Nor for three seconds: it may never come.
        virtual void soundMissing() = 0;
        /// The spool takes no more; the capture ends when this returns.
        virtual void spoolFull() = 0;
        /// Told once, at the end. \a loop: which one has ended.
        virtual void captureEnded(const CaptureLoop &loop) = 0;

    protected:
        ~Listener() = default;
    };

    /// What a pass works with; borrowed for as long as passes run.
    struct Tools {
        SerialQueue &queue;
        std::function<const VNCGDisplay &()> display; ///< called by passes only
        VNBufferMgr &spool;
        AudioInput &sound;
    };

    CaptureLoop(std::shared_ptr<Recording> recording, Tools tools, Listener &listener);

    /// Queues the first pass in \a delay, at \a frameRate passes a second. A null \a rectangle is the full
    /// display.
    void start(std::chrono::nanoseconds delay, const QRectF &rectangle, double frameRate);
    /// A pass now, on the capture queue, and the next ones behind it. \a origin in seconds of the absolute clock.
    void run(double origin, const QRectF &rectangle, double frameRate);
    /// From here on the listener hears nothing, and a pass that waits for it goes on. On the main thread.
    void abandon() { m_abandoned.request_stop(); }

private:
    void passOrEnd();
    void pass();
    void schedule(std::chrono::nanoseconds delay);
    [[nodiscard]] bool keepFrame(std::shared_ptr<const BitmapImage> image, double begin);
    void tellOfAudioWait();
    void end();
    void tellNow(const std::function<void()> &tell) const;
    void tellSoon(std::function<void()> tell) const;

    std::shared_ptr<Recording> m_recording;
    Tools m_tools;
    Listener &m_listener;
    std::stop_source m_abandoned;
    QRectF m_rectangle; ///< on the capture queue, as all below
    double m_frameRate = 30;
    int m_passesWithoutOrigin = 0;
    double m_lastKept = 0;   ///< when the pass began that kept a picture last; 0: none has
    MemoryReserve m_reserve; ///< for the end, where a pass finds no memory
};

} // namespace vornic
