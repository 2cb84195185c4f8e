#pragma once

#include "audio/PKAudioRecorderData.h"

#include <functional>
#include <memory>
#include <optional>

namespace vornic {

class PKAudioFrame2;

/// Makes the encoder's blocks of sound, which have no time, from the chunks of a spool: each where it begins, with
/// silence for those that are lost.
///
/// Owned by a MovieJob, used on the encoder's thread.
class SpooledSound
{
public:
    /// \a pop gives the next chunk, or nothing at the end.
    explicit SpooledSound(std::function<std::optional<PKAudioRecorderData>()> pop);

    /// Null at the end. Silence reaches no further than to \a end, in seconds: a chunk that claims to begin behind it
    /// follows at once.
    [[nodiscard]] std::shared_ptr<const PKAudioFrame2> next(double end);

private:
    [[nodiscard]] bool takeChunk();
    [[nodiscard]] std::int64_t missingFrames(double end) const;

    std::function<std::optional<PKAudioRecorderData>()> m_pop;
    std::optional<PKAudioRecorderData> m_chunk; ///< taken, not yet given
    double m_seconds = 0;                       ///< of the sound given so far
};

} // namespace vornic
