#pragma once

#include "display/band_store.h"

#include <QRect>

#include <memory>
#include <mutex>

namespace vornic {

class BitmapImage;
class CastPicture;

/// Takes pictures of a rectangle of what a screen cast shows.
///
/// Made for each cast; used from any thread, one at a time under its lock. Nothing is copied while nothing changes.
class CastGrabber
{
public:
    /// Borrows \a picture for life.
    explicit CastGrabber(CastPicture &picture);

    /// The part of \a rectangle that lies on the picture; null when none does, or there is no picture, or no memory.
    [[nodiscard]] std::shared_ptr<const BitmapImage> grab(const QRect &rectangle);

private:
    enum class Outcome { Done, OtherSize, NoPicture };

    [[nodiscard]] Outcome update(const QRect &rectangle);

    CastPicture &m_picture;
    std::mutex m_mutex;
    QRect m_visible; ///< the part of the picture that m_store shows
    BandStore m_store;
};

} // namespace vornic
