#pragma once

#include "display/display_backend.h"
#include "display/portal/cast_grabber.h"
#include "display/portal/cast_picture.h"

#include <QObject>
#include <QPoint>
#include <QTimer>

#include <memory>
#include <optional>

namespace vornic {

class CastSession;
class CastStream;
class TransparentPixel;
struct CastSource;

/// What a cast shows, and how it is grabbed; any thread.
struct CastScreen {
    CastPicture picture;
    CastGrabber grabber { picture };
};

/// The cast of one recording: the question to the user, the stream, and its first picture.
///
/// Made by PortalDisplay; lives on the main thread. What it shows may outlive it.
class ScreenCast : public QObject
{
    Q_OBJECT
public:
    /// \a answer is called once the first picture is there, or it is known that none will come; never after the end of
    /// this object.
    ScreenCast(const QString &parentWindow, DisplayBackend::AccessAnswer answer);
    ~ScreenCast() override;

    [[nodiscard]] const std::shared_ptr<CastScreen> &screen() const { return m_screen; }
    /// Of the monitor among the others, once access was granted; nothing where that is not told.
    [[nodiscard]] std::optional<QPoint> position() const { return m_position; }

private:
    void accessAnswered(const DisplayAccess &access, const CastSource &source);
    void firstPictureCame();
    void streamEnded();
    void finish(const DisplayAccess &access);

    DisplayBackend::AccessAnswer m_answer; ///< empty once it was given
    std::shared_ptr<CastScreen> m_screen = std::make_shared<CastScreen>();
    std::optional<QPoint> m_position;
    std::unique_ptr<CastSession> m_session;
    std::unique_ptr<CastStream> m_stream;
    std::unique_ptr<TransparentPixel> m_pixel; ///< from when the compositor is made to draw
    QTimer m_nudge;
    QTimer m_limit;
};

} // namespace vornic
