#pragma once

#include <QByteArray>
#include <QObject>
#include <QPoint>

#include <cstdint>
#include <optional>
#include <span>

namespace vornic {

class InputReceiver;
class X11Connection;
class X11Events;

/// Takes names of files that other programs drag over a window of ours which the toolkit does not know: the
/// receiving side of the XDND protocol, version 5.
///
/// Made by X11InputWindow; main thread only.
class XdndTarget : public QObject
{
    Q_OBJECT
public:
    /// Borrows events and receiver for life.
    XdndTarget(X11Events &events, std::uint32_t window, InputReceiver &receiver);

private:
    /// A drag that is over the window.
    struct Drag {
        std::uint32_t source = 0;
        bool namesFiles = false;
        bool mayCopy = false;
        bool isAsked = false;            ///< the names are on their way
        std::optional<QByteArray> names; ///< text/uri-list
        bool isTaken = false;            ///< the receiver would take them
        bool owesStatus = false;
        bool isDropped = false; ///< before the names have come
        QPoint onDesktop;
    };

    /// The five words of a client message.
    using MessageData = std::span<const std::uint32_t, 5>;

    void enter(MessageData data);
    void move(MessageData data);
    void leave();
    void drop(MessageData data);
    void namesCame(bool isThere);
    void finish();
    void askForNames(std::uint32_t time);
    /// A status or the end.
    void send(std::uint32_t type, bool isTaken);
    [[nodiscard]] QByteArray property(std::uint32_t window, std::uint32_t name, bool isRemoved) const;
    [[nodiscard]] bool listContains(std::uint32_t window, std::uint32_t name, std::uint32_t atom) const;

    X11Connection &m_connection;
    X11Events &m_events;
    const std::uint32_t m_window;
    InputReceiver &m_receiver;
    struct Atoms {
        std::uint32_t enter, position, status, leave, drop, finished, selection, typeList, actionList,
            actionCopy, uriList, names;
    };
    const Atoms m_atoms;
    std::optional<Drag> m_drag;
};

} // namespace vornic
