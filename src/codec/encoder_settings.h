#pragma once

#include <cstdint>

namespace vornic::encoder_settings {

/// How much work the video encoder puts into a picture: the wait after a recording, which is what users of
/// such recorders complain of most, against picture and size.
///
/// Looking ahead is what spends the bits well on a screen; fine motion and small blocks only cost time there.
/// benchmarks/README.md has the table of what was measured.
constexpr const char *videoPreset = "superfast";

/// 8x8dct: the fastest presets leave it out, and with it the High profile.
/// ratetol: a screen is still for minutes and then changes all at once; a tight average would blur the
/// change. qpmin: below, a still page only grows: it is as good as the pictures that it was recorded from.
constexpr const char *x264Parameters
    = "8x8dct=1:ratetol=4:qpmin=14:rc-lookahead=10:mbtree=1:subme=0:partitions=none";

/// Level 4.2 for whatever fits: the one that would be found by itself allows key frames of half the size, too
/// small for a page full of text, which would blur every two seconds.
constexpr int videoLevel = 42;
constexpr std::int64_t videoLevelMacroblocks = 8704;

/// Peaks, in times the bit rate aimed at: what the decoder's buffer is filled with, and how many seconds it
/// holds.
constexpr int peakRateFactor = 3;
constexpr int bufferFactor = 4;

/// The least that the encoder can aim at, in bits a second; pictures of a few pixels ask for less.
constexpr std::int64_t leastVideoBitrate = 16000;

/// Longest time from one key frame to the next, in seconds.
constexpr std::int64_t keyFrameSeconds = 2;

constexpr int audioSampleRate = 48000; ///< hertz
constexpr int audioChannels = 2;
constexpr std::int64_t audioBitrate = 160000; ///< bits a second

} // namespace vornic::encoder_settings
