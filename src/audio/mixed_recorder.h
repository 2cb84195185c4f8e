#pragma once

#include "audio/PKAudioRecorderDelegate.h"
#include "audio/audio_recorder.h"
#include "audio/peak_limiter.h"
#include "base/clock.h"
#include "base/serial_queue.h"

#include <QByteArray>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace vornic {

/// Records several devices at once, as one sound: what each of them hears at a time stands at that time.
///
/// Made and owned like any recorder; the recorders of the devices are its own. They deliver on threads of their own;
/// mixed and delivered is on a queue. As with one device, the first chunk is 20 ms of silence that ends at the moment of
/// its delivery. A device that is late is waited for for a second; one that is lost or has not begun, not at all: the
/// others go on. Sound of 16 bits alone.
class MixedRecorder final : public AudioRecorder, private PKAudioRecorderDelegate
{
public:
    /// What becomes of one device in the recordings that follow.
    struct Part {
        bool isOn = true;
        double level = 1; ///< its sound is multiplied by as much
        /// Called on the queue with each chunk as it came: its loudest sample, as a share of the loudest that there is,
        /// and its length in seconds. May be empty.
        std::function<void(double peak, double seconds)> heard = {};
        /// Called on the queue when the device is lost while another is heard (true), and when it is back (false). May be
        /// empty.
        std::function<void(bool isLost)> lost = {};
    };
    /// Whether the devices are mixed, or stand beside each other: the first in the first channels, and so on.
    enum class Layout { Mixed, SideBySide };

    /// \a now is the absolute clock, from any thread.
    explicit MixedRecorder(std::vector<std::unique_ptr<AudioRecorder>> recorders,
                           std::function<double()> now = absoluteTimeSeconds);
    ~MixedRecorder() override;

    /// One part for each recorder; while nothing is recorded.
    void setParts(const std::vector<Part> &parts, Layout layout);

    void setDelegate(PKAudioRecorderDelegate *delegate) override { m_delegate = delegate; }
    /// Of the first recorder.
    void setDeviceID(std::uint32_t deviceID) override;
    /// True where one of the devices starts; \a format is that of each.
    [[nodiscard]] bool startRecordWithFormat(const AudioStreamBasicDescription &format) override;
    /// With the channels of all that are on, where they stand side by side.
    [[nodiscard]] AudioStreamBasicDescription currentDataFormat() const override;
    void stopRecord() override;

private:
    /// On the queue, but for the recorder.
    struct Source {
        std::unique_ptr<AudioRecorder> recorder;
        Part part;
        bool isLost = false;
        /// Where in the mix the first of the samples stands, in frames; nothing before its first chunk.
        std::optional<std::int64_t> begin;
        std::vector<float> samples; ///< interleaved, from there on
    };

    void dataRecord(AudioRecorder &recorder,
                    const void *bytes,
                    std::uint32_t byteCount,
                    const AudioStreamBasicDescription &format) override;
    void soundWasLost(AudioRecorder &recorder) override;
    void soundCameBack(AudioRecorder &recorder) override;

    [[nodiscard]] Source &sourceOf(const AudioRecorder &recorder);
    void reset(const AudioStreamBasicDescription &format);
    void begin();
    void take(Source &source, const QByteArray &chunk, double time);
    void setLost(Source &source, bool isLost);
    [[nodiscard]] bool allAreLost() const;
    [[nodiscard]] std::int64_t endOf(const Source &source) const;
    [[nodiscard]] std::int64_t newest() const;
    [[nodiscard]] std::int64_t readyUntil() const;
    void deliver(std::int64_t end);
    void deliverChunk(std::int64_t frames);
    void addSource(Source &source, std::size_t firstChannel, std::vector<float> &mixed, std::int64_t frames);
    [[nodiscard]] std::size_t channelsOut() const;

    std::function<double()> m_now;
    PKAudioRecorderDelegate *m_delegate = nullptr;
    std::vector<Source> m_sources; ///< as many as ever
    // On the queue.
    Layout m_layout = Layout::Mixed;
    AudioStreamBasicDescription m_format; ///< of each device
    std::vector<PeakLimiter> m_limiters;  ///< one for each sound that is delivered
    std::optional<double> m_origin;       ///< of the mix, absolute clock; nothing before the first chunk
    std::int64_t m_position = 0;          ///< frames delivered

    mutable SerialQueue m_queue { "vornic mixer" }; ///< last: its thread ends before what it uses
};

} // namespace vornic
