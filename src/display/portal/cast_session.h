#pragma once

#include "bus/portal_request.h"
#include "display/display_backend.h"

#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QObject>
#include <QPoint>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace vornic {

/// Where the pictures of a cast come from: a connection to PipeWire, and the stream's number there.
struct CastSource {
    QDBusUnixFileDescriptor remote;
    std::uint32_t node = 0;
    std::optional<QPoint> position = {}; ///< of its monitor among the others, as far as the desktop tells
};

/// One session of the desktop's screen cast portal: from the question to the user until this program wants no more
/// pictures, or the desktop gives none.
///
/// Made by ScreenCast for one recording, so that the desktop's sign that the screen is recorded is true; lives on the main
/// thread. Its end closes the session, and the dialog.
class CastSession : public QObject
{
    Q_OBJECT
public:
    /// Called once. \a source is set where access was granted.
    using Answer = std::function<void(const DisplayAccess &access, const CastSource &source)>;

    /// Asks for a monitor, with no limit on the time; \a parentWindow as for DisplayBackend::prepare(). What the user has
    /// chosen is remembered for the next time, where the portal can do that.
    CastSession(QString parentWindow, Answer answer);
    ~CastSession() override;

signals:
    /// The desktop has closed the session.
    void ended();

private:
    using Step = void (CastSession::*)(const QVariantMap &results);

    void learnAbilities(const QDBusMessage &answer);
    void watchService();
    /// Asks the portal, and goes on with \a next when that was granted.
    void request(const QString &method, const QVariantList &arguments, QVariantMap options, Step next);
    void createSession();
    void selectSources(const QVariantMap &results);
    void start(const QVariantMap &results);
    void openRemote(const QVariantMap &results);
    void finish(const DisplayAccess &access, const CastSource &source = {});
    void fail(const QString &reason);

    const QString m_parentWindow;
    Answer m_answer; ///< empty once it was given
    uint m_version = 0;
    uint m_cursorModes = 0;
    QString m_path; ///< of the session; empty before there is one
    std::unique_ptr<PortalRequest> m_request;
};

} // namespace vornic
