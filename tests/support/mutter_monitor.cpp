#include "support/mutter_monitor.h"

#include "display/bitmap_image.h"
#include "display/portal/cast_grabber.h"
#include "display/portal/cast_picture.h"
#include "display/portal/cast_stream.h"
#include "support/test_pictures.h"
#include "support/wait_until.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QFile>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>

namespace vornic::test {

namespace {

const QString screenCast = QStringLiteral("org.gnome.Mutter.ScreenCast");
const QString remoteDesktop = QStringLiteral("org.gnome.Mutter.RemoteDesktop");
const QString session = QStringLiteral(".Session");
const QString ownBus = QStringLiteral("mutter monitor");

constexpr int leftButton = 0x110; // BTN_LEFT of linux/input-event-codes.h
constexpr uint pointerAsMetadata = 2;
/// The compositor rounds where it tells of the pointer, and cuts where windows are told.
constexpr double withinPixel = 0.25;
/// So often may be asked for one more frame.
constexpr qint64 nudgeMs = 100;

/// To the PipeWire of $XDG_RUNTIME_DIR.
int connectToPipeWire()
{
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    const QByteArray path = qgetenv("XDG_RUNTIME_DIR") + "/pipewire-0";
    std::strncpy(address.sun_path, path.constData(), sizeof address.sun_path - 1);
    if (::connect(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0)
        return socket;
    ::close(socket);
    return -1;
}

QString pathIn(const QVariant &answer)
{
    return answer.value<QDBusObjectPath>().path();
}

} // namespace

std::unique_ptr<MutterMonitor> MutterMonitor::attach()
{
    std::unique_ptr<MutterMonitor> monitor(new MutterMonitor);
    return monitor->start() ? std::move(monitor) : nullptr;
}

MutterMonitor::MutterMonitor()
    : m_bus(QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), ownBus))
    , m_picture(std::make_shared<CastPicture>())
    , m_grabber(std::make_unique<CastGrabber>(*m_picture))
{
}

MutterMonitor::~MutterMonitor()
{
    m_stream.reset();
    call(remoteDesktop, m_session, remoteDesktop + session, QStringLiteral("Stop"));
    QDBusConnection::disconnectFromBus(ownBus);
}

QVariant MutterMonitor::call(const QString &service,
                             const QString &path,
                             const QString &interface,
                             const QString &method,
                             const QVariantList &arguments) const
{
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    const QDBusMessage answer = m_bus.call(message);
    if (answer.type() == QDBusMessage::ErrorMessage)
        qWarning("%s: %s", qPrintable(method), qPrintable(answer.errorMessage()));
    return answer.type() == QDBusMessage::ReplyMessage ? answer.arguments().value(0) : QVariant();
}

bool MutterMonitor::openSession()
{
    m_session = pathIn(call(remoteDesktop,
                            QStringLiteral("/org/gnome/Mutter/RemoteDesktop"),
                            remoteDesktop,
                            QStringLiteral("CreateSession")));
    const QVariant id = call(remoteDesktop,
                             m_session,
                             QStringLiteral("org.freedesktop.DBus.Properties"),
                             QStringLiteral("Get"),
                             { remoteDesktop + session, QStringLiteral("SessionId") });
    const QVariantMap together { { QStringLiteral("remote-desktop-session-id"),
                                   id.value<QDBusVariant>().variant() } };
    const QString cast = pathIn(call(screenCast,
                                     QStringLiteral("/org/gnome/Mutter/ScreenCast"),
                                     screenCast,
                                     QStringLiteral("CreateSession"),
                                     { together }));
    m_streamPath
        = pathIn(call(screenCast,
                      cast,
                      screenCast + session,
                      QStringLiteral("RecordMonitor"),
                      { QString(), QVariantMap { { QStringLiteral("cursor-mode"), pointerAsMetadata } } }));
    return !m_streamPath.isEmpty();
}

bool MutterMonitor::start()
{
    if (!openSession())
        return false;
    m_bus.connect(screenCast,
                  m_streamPath,
                  screenCast + QStringLiteral(".Stream"),
                  QStringLiteral("PipeWireStreamAdded"),
                  this,
                  SLOT(streamAdded(uint)));
    ask(QStringLiteral("Start"), {});
    if (!waitUntil([this] { return m_node != 0; }))
        return false;
    m_painter = ScreenPainter::connect();
    if (!m_painter)
        return false;
    QImage pixel(1, 1, QImage::Format_RGB32);
    pixel.fill(Qt::black);
    const QRect screen({ 0, 0 }, m_painter->screenSize());
    m_nudge = m_painter->showWindow(pixel, screen.bottomRight());
    m_stream = CastStream::open(connectToPipeWire(), m_node, m_picture, { [] {}, [] {} });
    return m_stream && waitUntil([this] { return m_picture->isThere(); });
}

/// A frame that comes soon after another may be kept back. A pixel that changes has the compositor draw once more.
void MutterMonitor::nudge()
{
    if (m_sinceNudge.isValid() && !m_sinceNudge.hasExpired(nudgeMs))
        return;
    m_sinceNudge.start();
    m_isNudgeLight = !m_isNudgeLight;
    QImage pixel(1, 1, QImage::Format_RGB32);
    pixel.fill(m_isNudgeLight ? Qt::white : Qt::black);
    m_painter->drawInWindow(m_nudge, pixel, { 0, 0 });
}

QImage MutterMonitor::screen()
{
    nudge();
    const auto image = m_grabber->grab(QRect(QPoint(), m_picture->size()));
    return image ? pixelsOf(*image) : QImage();
}

void MutterMonitor::ask(const QString &method, const QVariantList &arguments) const
{
    call(remoteDesktop, m_session, remoteDesktop + session, method, arguments);
}

void MutterMonitor::moveTo(QPoint pixel)
{
    ask(QStringLiteral("NotifyPointerMotionAbsolute"),
        { m_streamPath, pixel.x() + withinPixel, pixel.y() + withinPixel });
    // A press before the compositor has drawn it there would reach no window.
    if (!waitUntil([&] { return m_picture->pointerPosition() == pixel; }, std::chrono::seconds(10)))
        qWarning("The pointer is at %d,%d and not at %d,%d",
                 m_picture->pointerPosition().x(),
                 m_picture->pointerPosition().y(),
                 pixel.x(),
                 pixel.y());
}

void MutterMonitor::button(bool isDown)
{
    ask(QStringLiteral("NotifyPointerButton"), { leftButton, isDown });
}

void MutterMonitor::click(QPoint pixel)
{
    moveTo(pixel);
    press();
    release();
}

void MutterMonitor::drag(QPoint from, QPoint to)
{
    moveTo(from);
    press();
    moveTo((from + to) / 2);
    moveTo(to);
    release();
}

} // namespace vornic::test
