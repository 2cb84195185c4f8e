#pragma once

#include <cstdint>

namespace vornic::encoder_settings {

/// How much work the video encoder puts into a picture: the wait after a recording against the quality of the
/// picture and the size of the movie.
///
/// On the contents of a screen, lookahead improves quality most; fine motion search and small partitions only
/// cost time. benchmarks/README.md has the measurements.
constexpr const char *videoPreset = "superfast";

/// 8x8dct: the fastest presets leave it out, and with it the High profile.
/// ratetol: a screen is still for minutes and then changes all at once; a tight average would blur the
/// change. qpmin: with less, the file of a still page grows but looks no better than the recorded pictures.
/// aq-mode: text would be the first to lose, because every letter is an edge. rc-lookahead: each frame of it takes
/// 6 MB at 1920 x 1080; beyond these few, quality hardly grows. weightp: a screen seldom fades.
constexpr const char *x264Parameters
    = "8x8dct=1:ratetol=4:qpmin=16:rc-lookahead=4:mbtree=1:aq-mode=0:weightp=0:subme=0:partitions=none";

/// At most so many threads encode, each a slice of the same picture. That takes the memory of one thread, and makes a
/// still page's key frames, which are most of its work, as quick as everything else; each slice costs some bytes.
constexpr int maxEncoderThreads = 4;

/// Level 4.2 wherever it allows the size: the level that the encoder chooses by itself limits key frames to
/// half as many bytes, too few for a page full of text, which would blur every two seconds.
constexpr int videoLevel = 42;
constexpr std::int64_t videoLevelMacroblocks = 8704;

/// Of the decoder's buffer, in multiples of the average bit rate: how fast it is filled (in bits a second),
/// and how much it holds (in bits).
constexpr int peakRateFactor = 3;
constexpr int bufferFactor = 4;

/// The lowest average that the encoder accepts, in bits a second; pictures of a few pixels would ask for
/// less.
constexpr std::int64_t minVideoBitrate = 16000;

/// The longest time from one key frame to the next in which something changes, in seconds; a frame that lasts longer is
/// followed by one.
constexpr std::int64_t keyFrameSeconds = 2;

/// The same while nothing changes. A key frame of a page of text takes 600 KB; one every two seconds would make an hour
/// of it 1 GB. Where there is sound, people seek in it, and some players stop at key frames only.
constexpr std::int64_t stillKeyFrameSeconds = 300;
constexpr std::int64_t stillKeyFrameSecondsWithSound = 30;

constexpr int audioSampleRate = 48000; ///< hertz
constexpr int audioChannels = 2;
constexpr std::int64_t audioBitrate = 160000; ///< bits a second

} // namespace vornic::encoder_settings
