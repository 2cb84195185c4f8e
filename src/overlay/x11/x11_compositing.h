#pragma once

#include <QObject>

#include <cstdint>

namespace vornic {

class X11Connection;
class X11Events;

/// Knows whether a compositing manager runs; they come and go.
///
/// Made by OverlayServer; main thread only.
class X11Compositing : public QObject
{
    Q_OBJECT
public:
    /// Borrows \a events for life.
    explicit X11Compositing(X11Events &events);

    [[nodiscard]] bool isActive() const { return m_isActive; }

signals:
    void changed();

private:
    [[nodiscard]] std::uint32_t owner() const;

    X11Connection &m_connection;
    std::uint32_t m_selection; ///< owned by the compositing manager
    bool m_isActive = false;
};

} // namespace vornic
