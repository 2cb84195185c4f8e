#include "display/portal/screen_cast.h"

#include "base/main_queue.h"
#include "display/portal/cast_session.h"
#include "display/portal/cast_stream.h"
#include "wayland/transparent_pixel.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QPointer>

#include <fcntl.h>

#include <chrono>
#include <utility>

namespace vornic {

namespace {

/// A compositor may show a new watcher nothing of a screen that stands still, before something is drawn on it. That
/// is repeated, because a busy machine may connect the stream only after the first time.
constexpr std::chrono::milliseconds patienceWithStillScreen(300);
constexpr std::chrono::milliseconds pixelLifetime(50);
constexpr std::chrono::seconds longestWait(3);

DisplayAccess noPictures()
{
    return { DisplayAccess::State::Failed,
             QCoreApplication::translate("vornic", "The desktop sends no picture of its screen.") };
}

} // namespace

ScreenCast::ScreenCast(const QString &parentWindow, DisplayBackend::AccessAnswer answer)
    : m_answer(std::move(answer))
    , m_session(std::make_unique<CastSession>(
          parentWindow,
          [this](const DisplayAccess &access, const CastSource &source) { accessAnswered(access, source); }))
{
    connect(m_session.get(), &CastSession::ended, this, [this] {
        m_screen->picture.end();
        finish(noPictures());
    });
    connect(&m_nudge, &QTimer::timeout, this, [this] {
        if (!m_pixel || m_pixel->state() == TransparentPixel::State::Over)
            m_pixel = std::make_unique<TransparentPixel>(pixelLifetime);
    });
    m_limit.setSingleShot(true);
    connect(&m_limit, &QTimer::timeout, this, [this] { finish(noPictures()); });
}

ScreenCast::~ScreenCast()
{
    m_screen->picture.end();
}

void ScreenCast::accessAnswered(const DisplayAccess &access, const CastSource &source)
{
    if (access.state != DisplayAccess::State::Granted) {
        finish(access);
        return;
    }
    m_position = source.position;
    const auto onMain = [self = QPointer(this)](void (ScreenCast::*react)()) {
        return [self, react] {
            main_queue::async([self, react] {
                if (self)
                    (self.get()->*react)();
            });
        };
    };
    m_stream = CastStream::open(::fcntl(source.remote.fileDescriptor(), F_DUPFD_CLOEXEC, 0),
                                source.node,
                                std::shared_ptr<CastPicture>(m_screen, &m_screen->picture),
                                { onMain(&ScreenCast::firstPictureCame), onMain(&ScreenCast::streamEnded) });
    if (!m_stream) {
        finish(noPictures());
        return;
    }
    m_nudge.start(patienceWithStillScreen);
    m_limit.start(longestWait);
}

void ScreenCast::firstPictureCame()
{
    finish({});
}

void ScreenCast::streamEnded()
{
    finish(noPictures());
}

void ScreenCast::finish(const DisplayAccess &access)
{
    m_nudge.stop();
    m_limit.stop();
    // Later, as whoever is told may end this object, and all that is at work now.
    if (const auto answer = std::exchange(m_answer, nullptr))
        QMetaObject::invokeMethod(
            this, [answer, access] { answer(access); }, Qt::QueuedConnection);
}

} // namespace vornic
