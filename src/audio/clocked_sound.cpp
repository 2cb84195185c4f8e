#include "audio/clocked_sound.h"

#include "codec/drift_resampler.h"

#include <algorithm>
#include <cmath>

namespace vornic {

ClockedSound::ClockedSound(const AudioStreamBasicDescription &format)
    : m_format(format)
    , m_timeline(format.mSampleRate)
    , m_resampler(std::make_unique<DriftResampler>(static_cast<int>(format.mBitsPerChannel),
                                                   static_cast<int>(format.mChannelsPerFrame),
                                                   static_cast<int>(format.mSampleRate)))
{
}

ClockedSound::~ClockedSound() = default;

void ClockedSound::start(double time, std::uint64_t frames)
{
    m_timeline.start(time, frames);
    m_given = frames;
}

/// Silence goes the same way as sound, so that the one goes over into the other where it should.
void ClockedSound::place(QByteArrayView captured, const Sink &sink)
{
    const auto bytesPerFrame = static_cast<qsizetype>(m_format.mBytesPerFrame);
    const auto frames = static_cast<std::uint64_t>(captured.size() / bytesPerFrame);
    const CaptureTimeline::Placement placement = m_timeline.place(frames);
    m_resampler->setCompensation(static_cast<int>(std::lround(placement.stretch * 1e6)));
    for (std::uint64_t left = placement.silence; left > 0;) {
        const std::uint64_t part = std::min(left, static_cast<std::uint64_t>(m_format.mSampleRate));
        put(QByteArray(static_cast<qsizetype>(part) * bytesPerFrame, silenceOf(m_format)), sink);
        left -= part;
    }
    put(captured.sliced(static_cast<qsizetype>(placement.drop) * bytesPerFrame), sink);
    m_timeline.setPosition(static_cast<double>(m_given) + m_resampler->heldFrames());
}

void ClockedSound::put(QByteArrayView frames, const Sink &sink)
{
    if (frames.isEmpty())
        return;
    const QByteArray ready = m_resampler->resample(frames);
    m_given += static_cast<std::uint64_t>(ready.size() / m_format.mBytesPerFrame);
    sink(ready);
}

} // namespace vornic
