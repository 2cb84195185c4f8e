#include "overlay/fake_overlay_server.h"

#include <utility>

namespace vornic {

FakeOverlayServer::FakeOverlayServer(InputReceiver &receiver)
    : m_receiver(receiver)
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

void FakeOverlayServer::setPixelsOfWindows(const QRegion &all, const QRegion &seen)
{
    m_pixelsOfWindows = all;
    m_seenPixelsOfWindows = seen;
    emit windowsMoved();
}

QRegion FakeOverlayServer::pixelsOf(const QList<QWindow *> & /*windows*/, Pixels which)
{
    return which == Pixels::All ? m_pixelsOfWindows : m_seenPixelsOfWindows;
}

void FakeOverlayServer::setAppearance(QWindow & /*window*/, const OverlayAppearance &appearance)
{
    m_appearance = appearance;
}

void FakeOverlayServer::orderFront(QWindow & /*window*/)
{
    m_isInFront = true;
}

void FakeOverlayServer::orderOut()
{
    m_isInFront = false;
}

void FakeOverlayServer::wait()
{
    ++m_waits;
}

} // namespace vornic
