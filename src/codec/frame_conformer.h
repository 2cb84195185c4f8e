#pragma once

#include "codec/PKPixelFormat.h"
#include "codec/PKScaleContext.h"
#include "codec/planar_picture.h"

#include <QSize>

#include <memory>
#include <optional>

namespace vornic {

class PKVideoFrame2;

/// Makes frames of the movie's size and format from frames of any: those of another shape, as after a change of the
/// screen's resolution, keep theirs, between black bars.
///
/// Made by a MovieWriter, used on the reader's thread.
class FrameConformer
{
public:
    explicit FrameConformer(QSize size)
        : m_size(size)
    {
    }

    /// The frame itself where it already fits; null where it holds no picture. Frames that share their pixels do so
    /// afterwards, where one follows the other.
    [[nodiscard]] std::shared_ptr<const PKVideoFrame2>
    conform(const std::shared_ptr<const PKVideoFrame2> &frame);

private:
    [[nodiscard]] std::shared_ptr<const PKVideoFrame2> scaled(const PKVideoFrame2 &frame, QSize shown);
    [[nodiscard]] std::shared_ptr<const PKVideoFrame2> betweenBars(const PKVideoFrame2 &picture);

    QSize m_size;
    QSize m_shown;
    QSize m_fitted; ///< what m_shown is scaled to: fits into m_size
    PKPixelFormat m_format = PKPixelFormatRGB32;
    std::optional<PKScaleContext> m_scaler;      ///< for m_shown and m_format
    std::shared_ptr<const PKVideoFrame2> m_last; ///< that was scaled, and what it became
    std::shared_ptr<const PKVideoFrame2> m_lastResult;
    std::shared_ptr<PlanarPicturePool> m_pool = std::make_shared<PlanarPicturePool>();
};

} // namespace vornic
