#include "audio/PKAudioRecorder.h"

#include "audio/PKAudioControl.h"
#include "audio/PKAudioRecorderDelegate.h"
#include "audio/clocked_sound.h"
#include "audio/pulse_connection.h"
#include "base/clock.h"
#include "base/log.h"

#include <pulse/operation.h>
#include <pulse/sample.h>
#include <pulse/stream.h>
#include <pulse/timeval.h>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <utility>

namespace vornic {

namespace {

/// How long a device may take to begin, seconds.
constexpr double openWait = 3.0;

/// The shortest chunk, in chunks a second; the longest holds twice as much.
constexpr double chunksPerSecond = 50;

/// How often the server is asked when frames are captured, seconds.
constexpr double timingInterval = 0.1;

/// How much later sound is placed than it was captured, seconds. What happens on the screen is in the next
/// picture, taken 18 ms later on average: half of that keeps sound close to its picture, and within 10 ms of its
/// own time.
constexpr double pictureDelay = 0.008;

/// Nothing for a format that cannot be recorded.
std::optional<pa_sample_spec> sampleSpecOf(const AudioStreamBasicDescription &format)
{
    using Format = AudioStreamBasicDescription;
    const bool isSigned = (format.mFormatFlags & Format::signedInteger) != 0;
    pa_sample_spec spec {};
    if (format.mBitsPerChannel == 16 && isSigned)
        spec.format = PA_SAMPLE_S16LE;
    else if (format.mBitsPerChannel == 8 && !isSigned)
        spec.format = PA_SAMPLE_U8;
    else
        return std::nullopt;
    if (format.mFormatID != Format::linearPcm || format.mChannelsPerFrame == 0
        || format.mChannelsPerFrame > PA_CHANNELS_MAX || !(format.mSampleRate >= 1)
        || format.mSampleRate > PA_RATE_MAX)
        return std::nullopt;
    spec.rate = static_cast<std::uint32_t>(format.mSampleRate);
    spec.channels = static_cast<std::uint8_t>(format.mChannelsPerFrame);
    if (format.mBytesPerFrame != pa_frame_size(&spec))
        return std::nullopt;
    return spec;
}

} // namespace

PKAudioRecorder::PKAudioRecorder(std::uint32_t deviceID, PKAudioControl &control)
    : m_control(control)
    , m_connection(control.connection())
    , m_deviceID(deviceID)
{
    const PulseConnection::Lock lock(m_connection);
    m_control.addRecorder(*this);
}

PKAudioRecorder::~PKAudioRecorder()
{
    PKAudioRecorder::stopRecord();
    const PulseConnection::Lock lock(m_connection);
    m_control.removeRecorder(*this);
}

void PKAudioRecorder::setDelegate(PKAudioRecorderDelegate *delegate)
{
    const PulseConnection::Lock lock(m_connection);
    m_delegate = delegate;
}

void PKAudioRecorder::setDeviceID(std::uint32_t deviceID)
{
    const PulseConnection::Lock lock(m_connection);
    if (std::exchange(m_deviceID, deviceID) == deviceID || !m_stream)
        return;
    closeStream();
    if (!openStream())
        logMessage(QStringLiteral("The audio input device does not start; the recording has no more sound."));
}

bool PKAudioRecorder::startRecordWithFormat(const AudioStreamBasicDescription &format)
{
    stopRecord();
    const PulseConnection::Lock lock(m_connection);
    m_format = format;
    m_pending.clear();
    m_beginsSoon = false;
    m_lossIsTold = false;
    if (!sampleSpecOf(format))
        return false;
    try {
        m_sound = std::make_unique<ClockedSound>(format);
    } catch (const std::runtime_error &) {
        return false;
    }
    return openStream();
}

AudioStreamBasicDescription PKAudioRecorder::currentDataFormat() const
{
    const PulseConnection::Lock lock(m_connection);
    return m_format;
}

void PKAudioRecorder::stopRecord()
{
    {
        const PulseConnection::Lock lock(m_connection);
        closeStream();
    }
    // What was captured before is delivered still, and nothing after that.
    m_deliveries.sync([] {});
}

/// A server that ends meanwhile, or has ended just before, is waited for: the session starts it again, and the recording
/// would have no sound to its end.
bool PKAudioRecorder::openStream()
{
    const double deadline = absoluteTimeSeconds() + openWait;
    const auto isDecided = [this] { return m_isLost || pa_stream_get_state(m_stream) == PA_STREAM_READY; };
    const auto isThere = [this] { return m_control.isThere(m_deviceID); };
    while (!connectStream() || !m_connection.waitUntil(deadline, isDecided) || m_isLost) {
        closeStream();
        const bool isRefused = m_connection.readyContext() || m_control.sourceOf(m_deviceID).isEmpty();
        if (isRefused || !m_connection.waitUntil(deadline, isThere))
            return false;
    }
    return true;
}

/// Waits for nothing: streamChanged() hears whether the device starts.
bool PKAudioRecorder::connectStream()
{
    const std::optional<pa_sample_spec> spec = sampleSpecOf(m_format);
    const QByteArray source = m_control.sourceOf(m_deviceID);
    if (!spec || source.isEmpty() || !m_connection.readyContext())
        return false;
    m_source = source;
    m_isLost = false;
    m_askedForTiming = 0;
    m_held.clear();
    m_sound->timeline().reopened();
    m_stream = pa_stream_new(m_connection.readyContext(), "Screen recording", &*spec, nullptr);
    if (!m_stream)
        return false;
    pa_stream_set_state_callback(
        m_stream,
        [](pa_stream *, void *self) { static_cast<PKAudioRecorder *>(self)->streamChanged(); },
        this);
    pa_stream_set_read_callback(
        m_stream,
        [](pa_stream *, std::size_t, void *self) { static_cast<PKAudioRecorder *>(self)->read(); },
        this);
    constexpr auto standard = static_cast<std::uint32_t>(-1);
    pa_buffer_attr buffer { standard, standard, standard, standard, standard };
    buffer.fragsize = static_cast<std::uint32_t>(chunkBytes() * 3 / 2);
    // Without the second flag the server moves a recording to another device when its own is unplugged.
    const auto flags = static_cast<pa_stream_flags_t>(PA_STREAM_ADJUST_LATENCY | PA_STREAM_DONT_MOVE);
    return pa_stream_connect_record(m_stream, source.constData(), &buffer, flags) >= 0;
}

void PKAudioRecorder::closeStream()
{
    if (!m_stream)
        return;
    dropTimingRequest();
    pa_stream_set_state_callback(m_stream, nullptr, nullptr);
    pa_stream_set_read_callback(m_stream, nullptr, nullptr);
    pa_stream_disconnect(m_stream);
    pa_stream_unref(std::exchange(m_stream, nullptr));
}

void PKAudioRecorder::streamChanged()
{
    const pa_stream_state_t state = pa_stream_get_state(m_stream);
    m_isLost = m_isLost || !PA_STREAM_IS_GOOD(state);
    if (m_isLost && m_sound->timeline().hasStarted() && !std::exchange(m_lossIsTold, true)) {
        logMessage(QStringLiteral("The audio input device is gone; the recording goes on without sound."));
        tell(&PKAudioRecorderDelegate::soundWasLost);
    } else if (state == PA_STREAM_READY && std::exchange(m_lossIsTold, false)) {
        logMessage(QStringLiteral("The audio input device is back; its sound is recorded again."));
        tell(&PKAudioRecorderDelegate::soundCameBack);
    }
    m_connection.wake();
}

/// In its place between the chunks.
void PKAudioRecorder::tell(void (PKAudioRecorderDelegate::*what)(AudioRecorder &))
{
    if (m_delegate)
        m_deliveries.async([this, what, delegate = m_delegate] { (delegate->*what)(*this); });
}

/// A stream that has failed is replaced only where its device is there: otherwise the next list is waited for. What the
/// system plays is another device as soon as the default output is.
void PKAudioRecorder::devicesListed()
{
    if (!m_stream || !m_control.isThere(m_deviceID))
        return;
    if (!m_isLost && m_control.sourceOf(m_deviceID) == m_source)
        return;
    closeStream();
    if (!connectStream())
        m_isLost = true;
}

void PKAudioRecorder::read()
{
    const double now = absoluteTimeSeconds();
    m_sound->timeline().arrived(now);
    const void *bytes = nullptr;
    std::size_t byteCount = 0;
    while (pa_stream_peek(m_stream, &bytes, &byteCount) >= 0 && byteCount > 0) {
        const auto count = static_cast<qsizetype>(byteCount);
        // No bytes but a count: the server has lost that many.
        if (bytes)
            m_held.append(static_cast<const char *>(bytes), count);
        else
            m_held.append(count, silenceOf(m_format));
        pa_stream_drop(m_stream);
    }
    askForTiming(now);
    placeHeld();
}

void PKAudioRecorder::askForTiming(double now)
{
    const double interval = m_sound->timeline().isSettled() ? timingInterval : 0;
    if (m_timingRequest || now - m_askedForTiming < interval)
        return;
    m_timingRequest = pa_stream_update_timing_info(
        m_stream,
        [](pa_stream *, int success, void *self) {
            auto &recorder = *static_cast<PKAudioRecorder *>(self);
            pa_operation_unref(std::exchange(recorder.m_timingRequest, nullptr));
            if (success)
                recorder.takeTiming();
        },
        this);
    m_askedForTiming = now;
}

/// Its answer is not waited for any more, and calls nobody.
void PKAudioRecorder::dropTimingRequest()
{
    if (!m_timingRequest)
        return;
    pa_operation_cancel(m_timingRequest);
    pa_operation_unref(std::exchange(m_timingRequest, nullptr));
}

/// Uses the server's numbers as they are: they are exact, while the library's interpolation of them needs
/// seconds to come within 10 ms.
void PKAudioRecorder::takeTiming()
{
    const pa_timing_info *timing = m_stream ? pa_stream_get_timing_info(m_stream) : nullptr;
    if (!timing || timing->write_index_corrupt)
        return;
    timeval wallClock {};
    pa_gettimeofday(&wallClock);
    const pa_usec_t age = pa_timeval_diff(&wallClock, &timing->timestamp);
    const double time = absoluteTimeSeconds() - static_cast<double>(age) / PA_USEC_PER_SEC;
    // Frames that have reached the server, and those on their way from the device. An output's frames reach
    // its monitor before they are heard.
    const double onTheWay
        = (static_cast<double>(timing->source_usec) - static_cast<double>(timing->sink_usec))
        / PA_USEC_PER_SEC;
    m_sound->timeline().addAnswer(time,
                                  static_cast<double>(timing->write_index) / m_format.mBytesPerFrame
                                      + onTheWay * m_format.mSampleRate);
}

void PKAudioRecorder::placeHeld()
{
    const auto frames = static_cast<std::uint64_t>(m_held.size()) / m_format.mBytesPerFrame;
    if (!m_sound->timeline().hasStarted()) {
        m_sound->timeline().leaveOut(frames);
        m_held.clear();
        if (m_sound->timeline().isSettled() && !std::exchange(m_beginsSoon, true))
            m_deliveries.async([this] { begin(); });
        return;
    }
    if (!m_sound->timeline().isSettled())
        return;
    m_sound->place(m_held, [this](const QByteArray &samples) {
        m_pending += samples;
        queuePending();
    });
    m_held.clear();
    queuePending();
}

/// On the queue and not where the server was heard: what the delegate takes for the time of the first chunk is
/// the time that the timeline starts at, however late the queue runs.
void PKAudioRecorder::begin()
{
    PKAudioRecorderDelegate *delegate = nullptr;
    AudioStreamBasicDescription format;
    QByteArray silence;
    {
        const PulseConnection::Lock lock(m_connection);
        if (!m_stream)
            return; // stopped meanwhile
        delegate = m_delegate;
        format = m_format;
        silence = QByteArray(static_cast<qsizetype>(chunkBytes()), silenceOf(format));
        m_sound->start(absoluteTimeSeconds() - 1 / chunksPerSecond - pictureDelay,
                       chunkBytes() / format.mBytesPerFrame);
    }
    if (delegate)
        delegate->dataRecord(*this, silence.constData(), static_cast<std::uint32_t>(silence.size()), format);
}

void PKAudioRecorder::queuePending()
{
    std::size_t done = 0;
    const auto available = static_cast<std::size_t>(m_pending.size());
    while (available - done >= chunkBytes()) {
        const std::size_t part = std::min(available - done, 2 * chunkBytes());
        queueChunk(m_pending.sliced(static_cast<qsizetype>(done), static_cast<qsizetype>(part)));
        done += part;
    }
    m_pending.remove(0, static_cast<qsizetype>(done));
}

void PKAudioRecorder::queueChunk(QByteArray chunk)
{
    if (!m_delegate)
        return;
    m_deliveries.async([this, chunk = std::move(chunk), delegate = m_delegate, format = m_format] {
        delegate->dataRecord(*this, chunk.constData(), static_cast<std::uint32_t>(chunk.size()), format);
    });
}

std::size_t PKAudioRecorder::chunkBytes() const
{
    return static_cast<std::size_t>(m_format.mSampleRate / chunksPerSecond) * m_format.mBytesPerFrame;
}

} // namespace vornic
