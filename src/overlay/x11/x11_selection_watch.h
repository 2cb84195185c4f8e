#pragma once

#include <QObject>

#include <cstdint>

namespace vornic {

class X11Connection;
class X11Events;

/// Tells who owns one of the selections of the server; programs take them to say what they do.
///
/// Made by X11Compositing and X11DragWatch; main thread only.
class X11SelectionWatch : public QObject
{
    Q_OBJECT
public:
    /// Borrows \a events for life.
    X11SelectionWatch(X11Events &events, std::uint32_t selection);

    /// A window of the program that has it now; 0 for none. Blocks for an exchange with the server.
    [[nodiscard]] std::uint32_t owner() const;

signals:
    /// Somebody took it, the owner too, or gave it up: then \a owner is 0.
    void ownerSet(std::uint32_t owner);

private:
    X11Connection &m_connection;
    const std::uint32_t m_selection;
};

} // namespace vornic
