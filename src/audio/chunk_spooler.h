#pragma once

#include "audio/AudioStreamBasicDescription.h"

namespace vornic {

class KeyedArchiver;
class PKAudioRecorderData;

/// Writes the chunks of sound pushed into one spool: each with its format, or without it where it is that of the
/// chunk before. At least every 100th chunk, two seconds of sound, has its format. Each tells where it begins, so that
/// it keeps its place where others are lost.
///
/// Owned by the spool manager, used on its audio queue.
class ChunkSpooler
{
public:
    void encode(const PKAudioRecorderData &chunk, KeyedArchiver &archiver);
    /// The next chunk is written with its format: it begins a new spool.
    void beginSpool();

private:
    AudioStreamBasicDescription m_format; ///< written last
    int m_chunksWithFormat = 0;           ///< since it was written, with the one that has it; 0: it never was
    double m_seconds = 0;                 ///< of the sound so far
};

} // namespace vornic
