#pragma once

#include <cstdint>

namespace vornic::encoder_settings {

/// How much work the video encoder puts into a picture: the wait after a recording against the size.
///
/// Measured at 1920 x 1080, 30 frames and 5.18 Mbit a second, on two cores: processor time a frame, bit rate,
/// and luma against the screen from the third second on, mean (worst frame). The first two kinds of picture
/// went through a JPEG at quality 95 before, which alone is at 46.3 dB.
///
///   preset      still page of text           scrolling text                    moving picture
///   ultrafast    8 ms  2.6 Mbit/s  45.5 dB    8 ms  6.4 Mbit/s  32.3 (26.7)    19 ms  5.8 Mbit/s  37.4 dB
///   superfast   12 ms  1.8 Mbit/s  44.6 dB   19 ms  5.3 Mbit/s  33.0 (27.8)    19 ms  5.7 Mbit/s  38.5 dB
///   veryfast    16 ms  2.2 Mbit/s  45.7 dB   20 ms  5.6 Mbit/s  39.0 (36.5)    30 ms  5.7 Mbit/s  38.1 dB
///   faster      37 ms  2.2 Mbit/s  46.0 dB   35 ms  5.4 Mbit/s  39.6 (37.0)    70 ms  5.9 Mbit/s  38.0 dB
///
/// From veryfast on the encoder looks ahead: it saves its bits for what will stay on the screen.
constexpr const char *videoPreset = "veryfast";

/// 8x8dct: the fastest presets leave it out, and with it the High profile.
/// ratetol: a screen is still for minutes and then changes all at once; a tight average would blur the
/// change. qpmin: below, a still page only grows: it is as good as the pictures that it was recorded from.
constexpr const char *x264Parameters = "8x8dct=1:ratetol=4:qpmin=14";

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
