#include "audio/fake_audio_recorder.h"

#include "audio/PKAudioRecorderDelegate.h"
#include "audio/fake_audio_control.h"
#include "base/thread.h"

#include <chrono>
#include <cmath>
#include <condition_variable>
#include <limits>
#include <mutex>
#include <numbers>
#include <vector>

namespace vornic {

namespace {

constexpr double chunksPerSecond = 50;

bool isDevice(std::uint32_t deviceID)
{
    return deviceID == FakeAudioControl::microphoneID || deviceID == FakeAudioControl::monitorID
        || deviceID == AudioControl::systemSoundID;
}

bool canBeRecorded(const AudioStreamBasicDescription &format)
{
    using Format = AudioStreamBasicDescription;
    return format.mFormatID == Format::linearPcm && (format.mFormatFlags & Format::signedInteger) != 0
        && format.mBitsPerChannel == 16 && format.mChannelsPerFrame > 0
        && format.mBytesPerFrame == 2 * format.mChannelsPerFrame && format.mSampleRate >= chunksPerSecond;
}

/// What the microphone gives as frame number \a frame of a recording, on every channel.
std::int16_t microphoneSample(std::uint64_t frame, double framesPerSecond)
{
    const double seconds = static_cast<double>(frame) / framesPerSecond;
    const double intoSecond = seconds - std::floor(seconds);
    const bool clicks = intoSecond >= 0.5 && intoSecond < 0.501;
    const double angle = 2 * std::numbers::pi * FakeAudioRecorder::toneHertz * seconds;
    const double level
        = clicks ? FakeAudioRecorder::clickLevel : FakeAudioRecorder::toneLevel * std::sin(angle);
    return static_cast<std::int16_t>(std::lround(level * std::numeric_limits<std::int16_t>::max()));
}

/// False as soon as \a stop is requested.
bool waitUntilDue(std::chrono::steady_clock::time_point due, const std::stop_token &stop)
{
    std::mutex mutex;
    std::condition_variable_any stopped;
    std::unique_lock lock(mutex);
    stopped.wait_until(lock, stop, due, [] { return false; });
    return !stop.stop_requested();
}

} // namespace

FakeAudioRecorder::FakeAudioRecorder(std::uint32_t deviceID)
    : m_deviceID(deviceID)
{
}

FakeAudioRecorder::~FakeAudioRecorder()
{
    FakeAudioRecorder::stopRecord();
}

void FakeAudioRecorder::setDeviceID(std::uint32_t deviceID)
{
    m_deviceID = deviceID;
    if (!isDevice(deviceID))
        stopRecord();
}

bool FakeAudioRecorder::startRecordWithFormat(const AudioStreamBasicDescription &format)
{
    stopRecord();
    if (!isDevice(m_deviceID) || !canBeRecorded(format))
        return false;
    m_format = format;
    m_stop = {};
    m_thread = startThread("vornic fake", [this, stop = m_stop.get_token()] { deliverChunks(stop); });
    return true;
}

void FakeAudioRecorder::stopRecord()
{
    m_stop.request_stop();
    if (m_thread.joinable())
        m_thread.join();
}

void FakeAudioRecorder::deliverChunks(const std::stop_token &stop)
{
    const auto chunkFrames = static_cast<std::uint64_t>(m_format.mSampleRate / chunksPerSecond);
    const std::size_t channels = m_format.mChannelsPerFrame;
    std::vector<std::int16_t> samples(chunkFrames * channels);
    // The standard library's steady clock is the absolute clock.
    const auto begin = std::chrono::steady_clock::now();
    for (std::uint64_t first = 0;; first += chunkFrames) {
        const std::chrono::duration<double> end(static_cast<double>(first + chunkFrames)
                                                / m_format.mSampleRate);
        if (!waitUntilDue(begin + std::chrono::duration_cast<std::chrono::nanoseconds>(end), stop))
            return;
        const bool isSilent = m_deviceID != FakeAudioControl::microphoneID;
        for (std::size_t i = 0; i < samples.size(); ++i)
            samples[i] = isSilent ? std::int16_t { 0 }
                                  : microphoneSample(first + i / channels, m_format.mSampleRate);
        if (m_delegate)
            m_delegate->dataRecord(*this,
                                   samples.data(),
                                   static_cast<std::uint32_t>(samples.size() * sizeof(std::int16_t)),
                                   m_format);
    }
}

} // namespace vornic
