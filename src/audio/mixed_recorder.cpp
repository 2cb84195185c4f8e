#include "audio/mixed_recorder.h"

#include "audio/sound_peak.h"
#include "base/log.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace vornic {

namespace {

/// The shortest chunk, in chunks a second; the longest holds twice as much.
constexpr double chunksPerSecond = 50;

/// How long a device is waited for that is late, seconds. One that sleeps gives nothing for longer.
constexpr double longestWait = 1;

} // namespace

MixedRecorder::MixedRecorder(std::vector<std::unique_ptr<AudioRecorder>> recorders,
                             std::function<double()> now)
    : m_now(std::move(now))
    , m_sources(recorders.size())
{
    for (std::size_t i = 0; i < recorders.size(); ++i) {
        m_sources[i].recorder = std::move(recorders[i]);
        m_sources[i].recorder->setDelegate(this);
    }
}

MixedRecorder::~MixedRecorder()
{
    MixedRecorder::stopRecord();
}

void MixedRecorder::setParts(const std::vector<Part> &parts, Layout layout)
{
    m_queue.sync([&] {
        m_layout = layout;
        for (std::size_t i = 0; i < m_sources.size(); ++i)
            m_sources[i].part = parts.at(i);
    });
}

void MixedRecorder::setDeviceID(std::uint32_t deviceID)
{
    m_sources.front().recorder->setDeviceID(deviceID);
}

bool MixedRecorder::startRecordWithFormat(const AudioStreamBasicDescription &format)
{
    stopRecord();
    if (format.mBitsPerChannel != 16)
        return false;
    std::vector<bool> isOn;
    m_queue.sync([&] {
        reset(format);
        for (const Source &source : m_sources)
            isOn.push_back(source.part.isOn);
    });
    bool isAnyStarted = false;
    std::vector<Source *> silent;
    for (std::size_t i = 0; i < m_sources.size(); ++i) {
        if (!isOn[i])
            continue;
        if (m_sources[i].recorder->startRecordWithFormat(format))
            isAnyStarted = true;
        else
            silent.push_back(&m_sources[i]);
    }
    for (Source *source : silent) {
        logMessage(QStringLiteral("One of the sounds to be recorded does not start."));
        if (isAnyStarted)
            m_queue.sync([this, source] { setLost(*source, true); });
    }
    return isAnyStarted;
}

AudioStreamBasicDescription MixedRecorder::currentDataFormat() const
{
    AudioStreamBasicDescription format;
    m_queue.sync([&] {
        format = m_format;
        format.mChannelsPerFrame = static_cast<std::uint32_t>(channelsOut());
        format.mBytesPerFrame = format.mBytesPerPacket = 2 * format.mChannelsPerFrame;
    });
    return format;
}

void MixedRecorder::stopRecord()
{
    for (const Source &source : m_sources)
        source.recorder->stopRecord();
    // What has come before is delivered, and nothing after that.
    m_queue.sync([this] {
        if (m_origin)
            deliver(newest());
        m_origin.reset();
        m_position = 0;
        for (Source &source : m_sources) {
            source.begin.reset();
            source.samples.clear();
        }
    });
}

void MixedRecorder::reset(const AudioStreamBasicDescription &format)
{
    m_format = format;
    m_limiters.assign(m_sources.size(), PeakLimiter(format.mSampleRate));
    for (Source &source : m_sources)
        source.isLost = false;
}

// ---- from the devices' threads

MixedRecorder::Source &MixedRecorder::sourceOf(const AudioRecorder &recorder)
{
    return *std::ranges::find_if(m_sources,
                                 [&](const Source &source) { return source.recorder.get() == &recorder; });
}

void MixedRecorder::dataRecord(AudioRecorder &recorder,
                               const void *bytes,
                               std::uint32_t byteCount,
                               const AudioStreamBasicDescription &format)
{
    const double time = m_now() - byteCount / (format.mBytesPerFrame * format.mSampleRate);
    QByteArray chunk(static_cast<const char *>(bytes), static_cast<qsizetype>(byteCount));
    m_queue.async([this, &source = sourceOf(recorder), chunk = std::move(chunk), time] {
        take(source, chunk, time);
        if (source.part.heard) {
            source.part.heard(peakOf(chunk.constData(), static_cast<std::uint32_t>(chunk.size()), m_format),
                              static_cast<double>(chunk.size())
                                  / (m_format.mBytesPerFrame * m_format.mSampleRate));
        }
        deliver(readyUntil());
    });
}

void MixedRecorder::soundWasLost(AudioRecorder &recorder)
{
    m_queue.async([this, &source = sourceOf(recorder)] { setLost(source, true); });
}

void MixedRecorder::soundCameBack(AudioRecorder &recorder)
{
    m_queue.async([this, &source = sourceOf(recorder)] { setLost(source, false); });
}

// ---- on the queue

void MixedRecorder::begin()
{
    const auto frames = static_cast<std::int64_t>(m_format.mSampleRate / chunksPerSecond);
    m_origin = m_now() - 1 / chunksPerSecond;
    deliverChunk(frames);
}

/// \a time is that of the chunk's first frame where it is the device's first; later ones follow without a gap.
void MixedRecorder::take(Source &source, const QByteArray &chunk, double time)
{
    if (!m_origin)
        begin();
    if (!source.begin)
        source.begin = std::llround((time - *m_origin) * m_format.mSampleRate);
    const std::size_t before = source.samples.size();
    const auto count = static_cast<std::size_t>(chunk.size() / 2);
    source.samples.resize(before + count);
    for (std::size_t i = 0; i < count; ++i) {
        std::int16_t sample = 0;
        std::memcpy(&sample, chunk.constData() + 2 * i, sizeof sample);
        source.samples[before + i] = static_cast<float>(sample * source.part.level);
    }
}

/// As long as one of them is heard, the sound is not lost.
void MixedRecorder::setLost(Source &source, bool isLost)
{
    const bool wereLost = allAreLost();
    const bool isNews = std::exchange(source.isLost, isLost) != isLost;
    const bool areLost = allAreLost();
    if (areLost == wereLost) {
        if (isNews && source.part.lost)
            source.part.lost(isLost);
    } else if (m_delegate) {
        areLost ? m_delegate->soundWasLost(*this) : m_delegate->soundCameBack(*this);
    }
    if (m_origin)
        deliver(readyUntil());
}

bool MixedRecorder::allAreLost() const
{
    return std::ranges::all_of(m_sources,
                               [](const Source &source) { return source.isLost || !source.part.isOn; });
}

/// Of what has come of it, in frames of the mix.
std::int64_t MixedRecorder::endOf(const Source &source) const
{
    return *source.begin + static_cast<std::int64_t>(source.samples.size() / m_format.mChannelsPerFrame);
}

std::int64_t MixedRecorder::newest() const
{
    std::int64_t end = m_position;
    for (const Source &source : m_sources)
        end = source.begin ? std::max(end, endOf(source)) : end;
    return end;
}

/// Up to where nothing is waited for any more.
std::int64_t MixedRecorder::readyUntil() const
{
    const std::int64_t end = newest();
    const std::int64_t latest = end - static_cast<std::int64_t>(longestWait * m_format.mSampleRate);
    std::int64_t ready = end;
    for (const Source &source : m_sources) {
        if (source.begin && !source.isLost)
            ready = std::min(ready, std::max(endOf(source), latest));
    }
    return ready;
}

void MixedRecorder::deliver(std::int64_t end)
{
    const auto shortest = static_cast<std::int64_t>(m_format.mSampleRate / chunksPerSecond);
    while (end - m_position >= shortest)
        deliverChunk(std::min(end - m_position, 2 * shortest));
}

std::size_t MixedRecorder::channelsOut() const
{
    const auto parts
        = std::ranges::count_if(m_sources, [](const Source &source) { return source.part.isOn; });
    return m_format.mChannelsPerFrame * (m_layout == Layout::Mixed ? 1 : static_cast<std::size_t>(parts));
}

/// What it has for the next \a frames frames of the mix, and forgets all that is before their end.
void MixedRecorder::addSource(Source &source,
                              std::size_t firstChannel,
                              std::vector<float> &mixed,
                              std::int64_t frames)
{
    if (!source.begin)
        return;
    const std::size_t channels = m_format.mChannelsPerFrame;
    const std::size_t channelsMixed = channelsOut();
    const std::int64_t end = m_position + frames;
    const std::int64_t last = std::min(end, endOf(source));
    for (std::int64_t frame = std::max(m_position, *source.begin); frame < last; ++frame) {
        const float *from = &source.samples[static_cast<std::size_t>(frame - *source.begin) * channels];
        float *to = &mixed[static_cast<std::size_t>(frame - m_position) * channelsMixed + firstChannel];
        for (std::size_t channel = 0; channel < channels; ++channel)
            to[channel] += from[channel];
    }
    const std::int64_t done = std::clamp<std::int64_t>(end - *source.begin, 0, endOf(source) - *source.begin);
    source.samples.erase(source.samples.begin(),
                         source.samples.begin() + done * static_cast<std::int64_t>(channels));
    *source.begin += done;
}

void MixedRecorder::deliverChunk(std::int64_t frames)
{
    const std::size_t channels = channelsOut();
    std::vector<float> mixed(static_cast<std::size_t>(frames) * channels, 0.0F);
    std::size_t firstChannel = 0;
    for (Source &source : m_sources) {
        addSource(source, firstChannel, mixed, frames);
        if (m_layout == Layout::SideBySide && source.part.isOn)
            firstChannel += m_format.mChannelsPerFrame;
    }
    QByteArray samples(static_cast<qsizetype>(mixed.size() * 2), Qt::Uninitialized);
    const std::size_t together = m_format.mChannelsPerFrame;
    for (std::size_t i = 0; i < mixed.size(); i += together) {
        const std::span<float> frame(mixed.data() + i, together);
        m_limiters[i / together % (channels / together)].limit(frame);
        for (std::size_t channel = 0; channel < together; ++channel) {
            const auto sample = static_cast<std::int16_t>(std::lround(frame[channel]));
            std::memcpy(samples.data() + 2 * (i + channel), &sample, sizeof sample);
        }
    }
    m_position += frames;
    if (!m_delegate)
        return;
    AudioStreamBasicDescription format = m_format;
    format.mChannelsPerFrame = static_cast<std::uint32_t>(channels);
    format.mBytesPerFrame = format.mBytesPerPacket = static_cast<std::uint32_t>(2 * channels);
    m_delegate->dataRecord(*this, samples.constData(), static_cast<std::uint32_t>(samples.size()), format);
}

} // namespace vornic
