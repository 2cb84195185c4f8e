#pragma once

#include "codec/PKPixelFormat.h"

#include <memory>

namespace vornic {

class PKVideoFrame2;

/// Converts pictures of one size and format to another size and format.
///
/// Made by whoever converts, and best kept for many frames: its tables, and the memory of frames that nobody
/// holds any more, are used again. Used by one thread at a time.
class PKScaleContext
{
public:
    /// Sizes are shown sizes, in pixels; odd ones are allowed. A YUV frame of an odd size is stored with its
    /// last column or row repeated, never scaled.
    PKScaleContext(int srcWidth,
                   int dstWidth,
                   int srcHeight,
                   int dstHeight,
                   PKPixelFormat srcFormat,
                   PKPixelFormat dstFormat);
    ~PKScaleContext();
    PKScaleContext(const PKScaleContext &) = delete;
    PKScaleContext &operator=(const PKScaleContext &) = delete;

    /// A new frame with the times of \a frame. A frame whose stored size is below the source size, or of
    /// another format, is an assertion failure and gives null.
    [[nodiscard]] std::shared_ptr<PKVideoFrame2> scaleFrame(const PKVideoFrame2 &frame);

    /// Converts only these rows of \a rgb into \a yuv, as scaleFrame() would. Both sizes of the context are
    /// the same, RGB to YUV; \a firstRow is even and \a rowCount even unless it reaches the last row. Pixels
    /// that \a yuv still shares with another frame are copied first.
    void convertRows(const PKVideoFrame2 &rgb, PKVideoFrame2 &yuv, int firstRow, int rowCount) const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace vornic
