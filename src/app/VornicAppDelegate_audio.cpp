// Audio input: the recording's time origin, and the chunks on their way into the spool.

#include "app/VornicAppDelegate.h"
#include "audio/PKAudioRecorderData.h"
#include "audio/audio_source.h"
#include "capture/VNBufferMgr.h"
#include "platform/clock.h"

#include <cmath>
#include <utility>

namespace vornic {

void VornicAppDelegate::setAudioSource(std::unique_ptr<AudioSource> source)
{
    m_audioSource = std::move(source);
    if (m_audioSource)
        m_audioSource->setChunkSink(
            [this](const void *bytes, std::uint32_t byteCount, const AudioStreamBasicDescription &format) {
                dataRecord(bytes, byteCount, format);
            });
    notifyChanged({ "allowedAudioRecord" });
}

void VornicAppDelegate::dataRecord(const void *bytes,
                                   std::uint32_t byteCount,
                                   const AudioStreamBasicDescription &format)
{
    if (mBufferMgr->exit()) {
        mBufferMgr->endAudioRecord();
        return;
    }
    constexpr double unsetOrigin = 0.001;
    if (std::abs(_audioStartTime.load()) < unsetOrigin)
        _audioStartTime = absoluteTimeSeconds() - byteCount / (format.mBytesPerFrame * format.mSampleRate);
    mBufferMgr->pushAudioBuffer(PKAudioRecorderData(
        QByteArray(static_cast<const char *>(bytes), static_cast<qsizetype>(byteCount)), format));
}

} // namespace vornic
