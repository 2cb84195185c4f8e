#include "overlay/wayland/wayland_drops.h"

#include "overlay/input_receiver.h"
#include "wayland/wayland_connection.h"

#include <QMimeData>
#include <QSocketNotifier>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>
#include <utility>

namespace vornic {

namespace {

constexpr std::uint32_t managerVersion = 3; // actions
constexpr const char *fileNames = "text/uri-list";
/// More than anybody drags by hand.
constexpr qsizetype maxNames = qsizetype { 1 } << 20;

WaylandDrops &dropsOf(void *data)
{
    return *static_cast<WaylandDrops *>(data);
}

QPointF pointOf(wl_fixed_t x, wl_fixed_t y)
{
    return { wl_fixed_to_double(x), wl_fixed_to_double(y) };
}

void fill(QMimeData &files, const QByteArray &names)
{
    files.setData(QString::fromLatin1(fileNames), names);
}

} // namespace

wl_data_offer_listener WaylandDrops::makeOfferListener()
{
    wl_data_offer_listener listener {};
    listener.offer = [](void *data, wl_data_offer * /*offer*/, const char *kind) {
        Offer &announced = dropsOf(data).m_announced;
        announced.namesFiles = announced.namesFiles || std::string_view(kind) == fileNames;
    };
    listener.source_actions = [](void *data, wl_data_offer *offer, std::uint32_t actions) {
        WaylandDrops &drops = dropsOf(data);
        const bool mayCopy = (actions & WL_DATA_DEVICE_MANAGER_DND_ACTION_COPY) != 0;
        if (offer == drops.m_announced.handle.get())
            drops.m_announced.mayCopy = mayCopy;
        else if (drops.m_drag && offer == drops.m_drag->offer.handle.get())
            drops.m_drag->offer.mayCopy = mayCopy;
    };
    listener.action = [](void *, wl_data_offer *, std::uint32_t) {};
    return listener;
}

wl_data_device_listener WaylandDrops::makeDeviceListener()
{
    wl_data_device_listener listener {};
    listener.data_offer = [](void *data, wl_data_device * /*device*/, wl_data_offer *offer) {
        dropsOf(data).m_announced = { WaylandPtr<wl_data_offer>(offer) };
        wl_data_offer_add_listener(offer, &offerListener, data);
    };
    listener.enter = [](void *data,
                        wl_data_device * /*device*/,
                        std::uint32_t serial,
                        wl_surface * /*surface*/,
                        wl_fixed_t x,
                        wl_fixed_t y,
                        wl_data_offer *offer) { dropsOf(data).entered(serial, pointOf(x, y), offer); };
    listener.leave = [](void *data, wl_data_device * /*device*/) { dropsOf(data).left(); };
    listener.motion
        = [](void *data, wl_data_device * /*device*/, std::uint32_t /*timeMs*/, wl_fixed_t x, wl_fixed_t y) {
              dropsOf(data).moved(pointOf(x, y));
          };
    listener.drop = [](void *data, wl_data_device * /*device*/) { dropsOf(data).dropped(); };
    // The clipboard's offers are nothing to us.
    listener.selection = [](void *data, wl_data_device * /*device*/, wl_data_offer *offer) {
        if (offer == dropsOf(data).m_announced.handle.get())
            dropsOf(data).m_announced = {};
    };
    return listener;
}

const wl_data_offer_listener WaylandDrops::offerListener = makeOfferListener();
const wl_data_device_listener WaylandDrops::deviceListener = makeDeviceListener();

WaylandDrops::WaylandDrops(WaylandConnection &connection, InputReceiver &receiver)
    : m_connection(connection)
    , m_receiver(receiver)
    , m_seat(connection.bind<wl_seat>(wl_seat_interface, 1))
{
    const auto manager
        = connection.bind<wl_data_device_manager>(wl_data_device_manager_interface, managerVersion);
    if (!manager || !m_seat)
        return;
    m_device.reset(wl_data_device_manager_get_data_device(manager.get(), m_seat.get()));
    wl_data_device_add_listener(m_device.get(), &deviceListener, this);
}

WaylandDrops::~WaylandDrops()
{
    endReading();
}

void WaylandDrops::setGrid(const OutputGrid &grid, QPoint origin)
{
    m_grid = grid;
    m_origin = origin;
}

void WaylandDrops::entered(std::uint32_t serial, QPointF onSurface, const wl_data_offer *offer)
{
    forget();
    if (!offer || offer != m_announced.handle.get())
        return;
    m_drag = Drag();
    m_drag->offer = std::exchange(m_announced, {});
    m_drag->serial = serial;
    moved(onSurface);
    if (m_drag->offer.namesFiles)
        askForNames();
}

void WaylandDrops::moved(QPointF onSurface)
{
    if (m_drag)
        m_drag->onDesktop = m_grid.pixelAt(onSurface) + m_origin;
}

/// Also comes after a drop, whose names may still be on their way.
void WaylandDrops::left()
{
    if (m_drag && !m_drag->isDropped)
        forget();
}

void WaylandDrops::forget()
{
    endReading();
    if (m_drag && m_drag->isTaken)
        m_receiver.filesLeft();
    m_drag.reset();
}

void WaylandDrops::dropped()
{
    if (!m_drag)
        return;
    m_drag->isDropped = true;
    if (m_drag->isComplete || !m_drag->offer.namesFiles)
        finish();
}

void WaylandDrops::askForNames()
{
    std::array<int, 2> ends { -1, -1 };
    if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    wl_data_offer_receive(m_drag->offer.handle.get(), fileNames, ends[1]);
    m_connection.flush();
    close(ends[1]);
    m_readFd = ends[0];
    m_reader = std::make_unique<QSocketNotifier>(m_readFd, QSocketNotifier::Read);
    QObject::connect(m_reader.get(), &QSocketNotifier::activated, m_reader.get(), [this] { readNames(); });
}

void WaylandDrops::readNames()
{
    std::array<char, 4096> part {};
    ssize_t length = 0;
    while ((length = read(m_readFd, part.data(), part.size())) > 0 && m_drag->names.size() < maxNames)
        m_drag->names.append(part.data(), length);
    if (length < 0 && errno == EAGAIN)
        return;
    endReading();
    namesCame();
}

void WaylandDrops::namesCame()
{
    QMimeData files;
    fill(files, m_drag->names);
    m_drag->isComplete = true;
    m_drag->isTaken = m_receiver.filesEntered(files, m_drag->offer.mayCopy);
    const std::uint32_t action
        = m_drag->isTaken ? WL_DATA_DEVICE_MANAGER_DND_ACTION_COPY : WL_DATA_DEVICE_MANAGER_DND_ACTION_NONE;
    wl_data_offer *const offer = m_drag->offer.handle.get();
    wl_data_offer_accept(offer, m_drag->serial, m_drag->isTaken ? fileNames : nullptr);
    if (wl_data_offer_get_version(offer) >= WL_DATA_OFFER_SET_ACTIONS_SINCE_VERSION)
        wl_data_offer_set_actions(offer, action, action);
    m_connection.flush();
    if (m_drag->isDropped)
        finish();
}

void WaylandDrops::finish()
{
    QMimeData files;
    fill(files, m_drag->names);
    wl_data_offer *const offer = m_drag->offer.handle.get();
    const bool isTaken = m_drag->isTaken && m_receiver.filesDropped(files, m_drag->onDesktop);
    if (isTaken && wl_data_offer_get_version(offer) >= WL_DATA_OFFER_FINISH_SINCE_VERSION)
        wl_data_offer_finish(offer);
    m_drag.reset();
    m_connection.flush();
}

/// Also called by the reader itself.
void WaylandDrops::endReading()
{
    if (m_reader) {
        m_reader->setEnabled(false);
        m_reader.release()->deleteLater();
    }
    if (m_readFd >= 0)
        close(std::exchange(m_readFd, -1));
}

} // namespace vornic
