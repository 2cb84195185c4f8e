#pragma once

#include "audio/AudioStreamBasicDescription.h"

#include <functional>

namespace vornic {

/// Where recorded sound comes from.
///
/// Owned by the application delegate, which starts and stops it on any thread. Chunks are delivered on the
/// source's own thread, and none after stopRecord() has returned.
class AudioSource
{
public:
    /// The bytes of a chunk are valid only during the call.
    using ChunkSink = std::function<void(
        const void *bytes, std::uint32_t byteCount, const AudioStreamBasicDescription &format)>;

    virtual ~AudioSource() = default;
    AudioSource(const AudioSource &) = delete;
    AudioSource &operator=(const AudioSource &) = delete;

    /// Set before the first start.
    virtual void setChunkSink(ChunkSink sink) = 0;
    /// True when chunks will come, in the format of currentDataFormat().
    [[nodiscard]] virtual bool startRecordWithFormat(const AudioStreamBasicDescription &format) = 0;
    [[nodiscard]] virtual AudioStreamBasicDescription currentDataFormat() const = 0;
    /// May be called when already stopped.
    virtual void stopRecord() = 0;

protected:
    AudioSource() = default;
};

} // namespace vornic
