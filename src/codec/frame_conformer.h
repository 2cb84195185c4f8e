#pragma once

#include "codec/PKPixelFormat.h"
#include "codec/PKScaleContext.h"

#include <QSize>

#include <memory>
#include <optional>

namespace vornic {

class PKVideoFrame2;

/// Makes frames of the movie's size and format from frames of any.
///
/// Made by a MovieWriter, used on the reader's thread.
class FrameConformer
{
public:
    explicit FrameConformer(QSize size)
        : m_size(size)
    {
    }

    /// The frame itself where it already fits; null where it holds no picture.
    [[nodiscard]] std::shared_ptr<const PKVideoFrame2>
    conform(const std::shared_ptr<const PKVideoFrame2> &frame);

private:
    QSize m_size;
    QSize m_shown;
    PKPixelFormat m_format = PKPixelFormatRGB32;
    std::optional<PKScaleContext> m_scaler; ///< for m_shown and m_format
};

} // namespace vornic
