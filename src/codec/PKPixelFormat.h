#pragma once

namespace vornic {

/// How a frame's pixels lie in memory.
enum class PKPixelFormat {
    PKPixelFormatRGB32,   ///< one plane, bytes B, G, R, unused; full range
    PKPixelFormatYUV420P, ///< planes Y, Cb, Cr, the last two of half the width and height; BT.709, limited
                          ///< range
};
using enum PKPixelFormat;

} // namespace vornic
