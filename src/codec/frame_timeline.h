#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace vornic {

class PKVideoFrame2;

/// The pictures that a movie shows, each until the next one, made of the frames that are read.
///
/// Frames that are out of order are left out. A frame that shares the pixels of the one before only makes that one last
/// longer, unless it is to be a key frame. Made by a MovieWriter, used on its thread.
class FrameTimeline
{
public:
    using Source = std::function<std::shared_ptr<const PKVideoFrame2>()>;

    struct Shown {
        std::shared_ptr<const PKVideoFrame2> frame;
        std::int64_t end = 0;    ///< until when it is shown, in PKTimebase ticks
        std::int64_t frames = 1; ///< how many were read that it stands for
        bool isNew = true;       ///< false: the picture is that of the one before
    };

    /// \a source gives the next frame, null at the end.
    explicit FrameTimeline(Source source);

    /// Nothing at the end. Throws what the source throws.
    [[nodiscard]] std::optional<Shown> next();

    /// Frames that were left out.
    [[nodiscard]] std::int64_t framesSkipped() const { return m_framesSkipped; }

private:
    [[nodiscard]] std::optional<Shown> nextFrame();

    Source m_source;
    std::optional<Shown> m_pending;                   ///< read already, with its end
    std::shared_ptr<const PKVideoFrame2> m_following; ///< the one behind it
    std::int64_t m_changed = 0;                       ///< when the picture that is shown was new, ticks
    bool m_hasBegun = false;
    std::int64_t m_framesSkipped = 0;
};

} // namespace vornic
