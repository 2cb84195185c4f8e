#include "overlay/fake_overlay_server.h"

#include <utility>

namespace vornic {

FakeOverlayServer::FakeOverlayServer(InputReceiver &receiver, Shown shown)
    : m_receiver(receiver)
    , m_hasSurface(shown == Shown::ByServer)
{
}

void FakeOverlayServer::setComposited(bool isComposited)
{
    if (std::exchange(m_isComposited, isComposited) != isComposited)
        emit compositingChanged();
}

void FakeOverlayServer::setDragging(bool isDragging)
{
    if (std::exchange(m_isDragging, isDragging) != isDragging)
        emit draggingChanged();
}

void FakeOverlayServer::setPixelsOfWindows(const QRegion &all, const std::optional<QRegion> &seen)
{
    m_pixelsOfWindows = all;
    m_seenPixelsOfWindows = seen.value_or(all);
    emit windowsMoved();
}

QRegion FakeOverlayServer::pixelsOf(const QList<QWindow *> & /*windows*/, Pixels which)
{
    return which == Pixels::All ? m_pixelsOfWindows : m_seenPixelsOfWindows;
}

void FakeOverlayServer::setAppearance(QWindow & /*window*/, const OverlayAppearance &appearance)
{
    m_asked.appearance = appearance;
}

void FakeOverlayServer::orderFront(QWindow & /*window*/)
{
    m_asked.isInFront = true;
}

void FakeOverlayServer::orderOut()
{
    m_asked.isInFront = false;
}

void FakeOverlayServer::wait()
{
    ++m_asked.waits;
}

} // namespace vornic
