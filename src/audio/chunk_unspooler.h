#pragma once

#include "audio/AudioStreamBasicDescription.h"

#include <optional>

namespace vornic {

class KeyedUnarchiver;
class PKAudioRecorderData;

/// Reads back the chunks that a ChunkSpooler wrote, in the same order. Where some are lost, those behind them are
/// still read, unless the format changed meanwhile.
///
/// Owned by the spool manager, used on its audio queue.
class ChunkUnspooler
{
public:
    /// No chunk where the samples are missing, where their format is not known, or where it is none that can be encoded.
    [[nodiscard]] std::optional<PKAudioRecorderData> decode(const KeyedUnarchiver &unarchiver);
    /// Another spool is read, or this one from its start.
    void forget() { m_format.reset(); }

private:
    [[nodiscard]] std::optional<PKAudioRecorderData> decodeSamples(const KeyedUnarchiver &unarchiver);

    std::optional<AudioStreamBasicDescription> m_format; ///< of the chunk that was read last
};

} // namespace vornic
