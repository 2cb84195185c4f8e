#include "overlay/x11/xdnd_target.h"

#include "overlay/input_receiver.h"
#include "x11/x11_connection.h"
#include "x11/x11_events.h"
#include "x11/xcb_reply.h"

#include <QMimeData>

#include <algorithm>
#include <cstring>

namespace vornic {

namespace {

constexpr std::uint32_t protocolVersion = 5;
constexpr std::uint32_t maxWords = 1U << 18;

void fill(QMimeData &files, const QByteArray &names)
{
    files.setData(QStringLiteral("text/uri-list"), names);
}

} // namespace

XdndTarget::XdndTarget(X11Events &events, std::uint32_t window, InputReceiver &receiver)
    : m_connection(events.connection())
    , m_events(events)
    , m_window(window)
    , m_receiver(receiver)
    , m_atoms { .enter = m_connection.atom("XdndEnter"),
                .position = m_connection.atom("XdndPosition"),
                .status = m_connection.atom("XdndStatus"),
                .leave = m_connection.atom("XdndLeave"),
                .drop = m_connection.atom("XdndDrop"),
                .finished = m_connection.atom("XdndFinished"),
                .selection = m_connection.atom("XdndSelection"),
                .typeList = m_connection.atom("XdndTypeList"),
                .actionList = m_connection.atom("XdndActionList"),
                .actionCopy = m_connection.atom("XdndActionCopy"),
                .uriList = m_connection.atom("text/uri-list"),
                .names = m_connection.atom("VORNIC_DROP") }
{
    xcb_change_property(m_connection.get(),
                        XCB_PROP_MODE_REPLACE,
                        window,
                        m_connection.atom("XdndAware"),
                        XCB_ATOM_ATOM,
                        32,
                        1,
                        &protocolVersion);
    connect(&events, &X11Events::eventRead, this, [this](const xcb_generic_event_t &event) {
        if (kindOf(event) == XCB_SELECTION_NOTIFY) {
            const auto &notice = as<xcb_selection_notify_event_t>(event);
            if (notice.requestor == m_window)
                namesCame(notice.property != XCB_ATOM_NONE);
        } else if (kindOf(event) == XCB_CLIENT_MESSAGE) {
            const auto &message = as<xcb_client_message_event_t>(event);
            if (message.window != m_window)
                return;
            if (message.type == m_atoms.enter)
                enter(message.data.data32);
            else if (!m_drag || message.data.data32[0] != m_drag->source)
                return;
            else if (message.type == m_atoms.position)
                move(message.data.data32);
            else if (message.type == m_atoms.leave)
                leave();
            else if (message.type == m_atoms.drop)
                drop(message.data.data32);
        }
    });
}

void XdndTarget::enter(MessageData data)
{
    leave();
    m_drag = Drag();
    m_drag->source = data[0];
    const bool hasLongList = (data[1] & 1U) != 0;
    m_drag->namesFiles = hasLongList ? listContains(data[0], m_atoms.typeList, m_atoms.uriList)
                                     : std::ranges::count(data.subspan<2>(), m_atoms.uriList) > 0;
}

void XdndTarget::move(MessageData data)
{
    m_drag->onDesktop
        = QPoint(static_cast<std::int16_t>(data[2] >> 16U), static_cast<std::int16_t>(data[2] & 0xffffU));
    m_drag->mayCopy
        = data[4] == m_atoms.actionCopy || listContains(data[0], m_atoms.actionList, m_atoms.actionCopy);
    m_drag->owesStatus = true;
    if (m_drag->namesFiles && !m_drag->isAsked)
        askForNames(data[3]);
    if (!m_drag->namesFiles || m_drag->names)
        send(m_atoms.status, m_drag->isTaken);
}

void XdndTarget::askForNames(std::uint32_t time)
{
    m_drag->isAsked = true;
    xcb_convert_selection(
        m_connection.get(), m_window, m_atoms.selection, m_atoms.uriList, m_atoms.names, time);
    m_events.flush();
}

void XdndTarget::namesCame(bool isThere)
{
    const QByteArray names = isThere ? property(m_window, m_atoms.names, true) : QByteArray();
    if (!m_drag || !m_drag->isAsked || m_drag->names)
        return;
    m_drag->names = names;
    QMimeData files;
    fill(files, names);
    m_drag->isTaken = m_receiver.filesEntered(files, m_drag->mayCopy);
    if (m_drag->owesStatus)
        send(m_atoms.status, m_drag->isTaken);
    if (m_drag->isDropped)
        finish();
}

void XdndTarget::leave()
{
    if (m_drag && m_drag->isTaken)
        m_receiver.filesLeft();
    m_drag.reset();
}

void XdndTarget::drop(MessageData data)
{
    if (m_drag->namesFiles && !m_drag->isAsked)
        askForNames(data[2]);
    m_drag->isDropped = true;
    m_drag->owesStatus = false;
    if (!m_drag->namesFiles || m_drag->names)
        finish();
}

void XdndTarget::finish()
{
    QMimeData files;
    fill(files, m_drag->names.value_or(QByteArray()));
    const bool isTaken = m_drag->isTaken && m_receiver.filesDropped(files, m_drag->onDesktop);
    send(m_atoms.finished, isTaken);
    m_drag.reset();
}

void XdndTarget::send(std::uint32_t type, bool isTaken)
{
    const bool isStatus = type == m_atoms.status;
    xcb_client_message_event_t message {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = m_drag->source;
    message.type = type;
    message.data.data32[0] = m_window;
    // Without a rectangle the source tells every movement anyway; another flag than this one would count as a
    // yes for some of them.
    message.data.data32[1] = isTaken ? 1 : 0;
    message.data.data32[isStatus ? 4 : 2] = isTaken ? m_atoms.actionCopy : 0;
    xcb_send_event(m_connection.get(), 0, m_drag->source, 0, reinterpret_cast<const char *>(&message));
    m_events.flush();
    if (isStatus)
        m_drag->owesStatus = false;
}

QByteArray XdndTarget::property(std::uint32_t window, std::uint32_t name, bool isRemoved) const
{
    const auto cookie = xcb_get_property(
        m_connection.get(), isRemoved ? 1 : 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, maxWords);
    const XcbReply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(m_connection.get(), cookie, nullptr));
    if (!reply)
        return {};
    return { static_cast<const char *>(xcb_get_property_value(reply.get())),
             xcb_get_property_value_length(reply.get()) };
}

bool XdndTarget::listContains(std::uint32_t window, std::uint32_t name, std::uint32_t atom) const
{
    const QByteArray list = property(window, name, false);
    for (qsizetype at = 0; at + 4 <= list.size(); at += 4) {
        std::uint32_t entry = 0;
        std::memcpy(&entry, list.constData() + at, sizeof entry);
        if (entry == atom)
            return true;
    }
    return false;
}

} // namespace vornic
