#pragma once

#include "display/changed_bands.h"
#include "display/display_backend.h"
#include "display/portal/cast_frame.h"

#include <QImage>

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace vornic {

/// Which rows of a cast picture may have changed.
struct CastChanges {
    QSize size;                 ///< of the picture; empty where there is none
    std::vector<BandRun> bands; ///< of 16 rows each, from the picture's top
};

/// What a screen cast shows now: the newest picture, turned right, and the pointer.
///
/// Made for each cast; the stream's thread writes, any thread reads, and nobody waits for the compositor.
class CastPicture
{
public:
    using Now = std::function<double()>;

    /// \a now: seconds of a clock that is never set, for tests.
    explicit CastPicture(Now now = {});

    /// Notes what \a frame says of the pointer and of what has changed. Each frame of the stream, in its order.
    void note(const CastFrame &frame);
    /// Copies from the newest picture what has changed since the last call.
    void show(const CastPixels &pixels);
    /// There will be no more; what was shown is gone.
    void end();

    /// A picture was shown, and the cast has not ended.
    [[nodiscard]] bool isThere() const;
    [[nodiscard]] bool hasEnded() const;
    /// Empty where there is no picture.
    [[nodiscard]] QSize size() const;
    [[nodiscard]] QPoint pointerPosition() const;
    /// Null where it is hidden, or drawn into the picture.
    [[nodiscard]] std::shared_ptr<const CursorShape> cursorShape() const;

    /// What has changed since the last call; for one caller.
    [[nodiscard]] CastChanges takeChanges();
    /// Writes the \a runs of bands of \a part, which lies on the picture, to their places in a picture that begins at
    /// \a to and has the size of \a part. False where the picture has not the size \a size any more.
    [[nodiscard]] bool
    copyBands(QSize size, const QRect &part, const std::vector<BandRun> &runs, uchar *to) const;

private:
    void notePointer(const CastPointer &pointer);
    void noteDamage(const CastFrame &frame);
    [[nodiscard]] ChangedBands bandsToCopy(const CastPixels &pixels);
    void copyRows(const CastPixels &pixels, const BandRun &run);

    const Now m_now;
    mutable std::mutex m_mutex; ///< guards all below
    bool m_hasEnded = false;
    QImage m_picture;                ///< Format_RGB32; null before the first one
    std::vector<QRect> m_damage;     ///< noted and not yet copied
    bool m_mayAllHaveChanged = true; ///< the same, of the whole picture
    std::uint64_t m_lastSequence = 0;
    double m_lastWholeCopy = 0;
    std::optional<ChangedBands> m_changed; ///< copied and not yet taken; as long as there is a picture
    CastPointer m_pointer;
};

} // namespace vornic
