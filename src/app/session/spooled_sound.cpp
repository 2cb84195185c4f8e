#include "app/session/spooled_sound.h"

#include "codec/PKAudioFrame2.h"
#include "codec/PKMuxerContext.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace vornic {

namespace {

/// \a frames frames of \a samples, which hold at least as many.
std::shared_ptr<const PKAudioFrame2>
blockOf(const QByteArray &samples, std::int64_t frames, const AudioStreamBasicDescription &format)
{
    return std::make_shared<const PKAudioFrame2>(format.mBitsPerChannel == 8
                                                     ? PKMuxerContext::sampleFormatUnsigned8
                                                     : PKMuxerContext::sampleFormatSigned16,
                                                 static_cast<std::int32_t>(format.mChannelsPerFrame),
                                                 static_cast<std::int32_t>(format.mSampleRate),
                                                 static_cast<std::int32_t>(frames),
                                                 samples.constData());
}

} // namespace

SpooledSound::SpooledSound(std::function<std::optional<PKAudioRecorderData>()> pop)
    : m_pop(std::move(pop))
{
}

/// The next chunk that holds a frame; false at the end.
bool SpooledSound::takeChunk()
{
    while (!m_chunk || m_chunk->frameCount() == 0) {
        m_chunk = m_pop();
        if (!m_chunk)
            return false;
    }
    return true;
}

/// Between the sound so far and the chunk, a second of them at most.
std::int64_t SpooledSound::missingFrames(double end) const
{
    const double seconds = m_chunk->begin() - m_seconds;
    if (!(seconds > 0) || m_chunk->begin() > end)
        return 0;
    return std::llround(std::min(seconds, 1.0) * m_chunk->dataFormat().mSampleRate);
}

std::shared_ptr<const PKAudioFrame2> SpooledSound::next(double end)
{
    if (!takeChunk())
        return nullptr;
    const AudioStreamBasicDescription &format = m_chunk->dataFormat();
    if (const std::int64_t missing = missingFrames(end); missing > 0) {
        m_seconds += static_cast<double>(missing) / format.mSampleRate;
        const char silence = format.mBitsPerChannel == 8 ? static_cast<char>(0x80) : '\0';
        return blockOf(QByteArray(missing * format.bytesPerFrame(), silence), missing, format);
    }
    const PKAudioRecorderData chunk = *std::exchange(m_chunk, std::nullopt);
    m_seconds += chunk.duration();
    return blockOf(chunk.data(), chunk.frameCount(), chunk.dataFormat());
}

} // namespace vornic
