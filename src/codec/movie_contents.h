#pragma once

#include <QByteArray>
#include <QSize>

#include <cstdint>
#include <vector>

namespace vornic {

/// What was put into a movie; a plain value.
///
/// Gathered by a MovieWriter on its thread, for a MovieProof to find it all again in the file.
struct MovieContents {
    QSize pictureSize;       ///< as stored, in pixels
    std::int64_t frames = 0; ///< as stored; one may stand for several equal ones that were read
    std::int64_t begin = 0;  ///< when the first frame is shown, in PKTimebase ticks
    std::int64_t end = 0;    ///< until when the last one is shown, in PKTimebase ticks
    QByteArray lastFrame;    ///< MovieProof::endingOf() its packet

    /// One track of sound.
    struct Sound {
        int channels = 0;
        int sampleRate = 0;       ///< hertz
        std::int64_t samples = 0; ///< in each channel; 0: the track is left out
        QByteArray last;          ///< MovieProof::endingOf() the last packet
    };
    std::vector<Sound> sounds; ///< in the order of their tracks
};

} // namespace vornic
