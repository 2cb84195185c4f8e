#pragma once

#include <cstdint>

namespace vornic::encoder_settings {

/// How much work the video encoder puts into a picture: the wait after a recording, which is what users of
/// such recorders complain of most, against picture and size.
///
/// Measured at 1920 x 1080, 75 frames at 30 a second, aiming at 5.18 Mbit/s: processor time a frame, bit
/// rate, luma of all frames against what the encoder was given.
///
///                                       scrolling text          moving colours          desktop, 1 of 6
///                                       changes
///   ultrafast                           13 ms  6.0 Mb  36.1 dB  17 ms  4.2 Mb  51.1 dB   9 ms  5.8 Mb  39.4
///   dB ultrafast, looking 10 ahead, aq     11 ms  5.5 Mb  39.1 dB  21 ms  3.9 Mb  51.4 dB   9 ms  5.1
///   Mb  42.2 dB superfast                           23 ms  4.8 Mb  34.8 dB  22 ms  2.6 Mb  51.4 dB  18
///   ms  4.6 Mb  36.8 dB superfast, looking 10 ahead         16 ms  5.0 Mb  40.3 dB  23 ms  2.6 Mb  51.5 dB
///   14 ms  4.5 Mb  42.8 dB
///     and subme 0, partitions none      14 ms  5.1 Mb  40.0 dB  18 ms  2.5 Mb  51.4 dB  14 ms  4.5 Mb  42.8
///     dB
///   veryfast                            26 ms  5.0 Mb  40.3 dB  41 ms  4.2 Mb  51.8 dB  19 ms  4.5 Mb  42.8
///   dB
///
/// Looking ahead is what spends the bits well on a screen; fine motion and small blocks only cost time there.
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
