#include "overlay/fake_overlay_server.h"

#include <QPainter>

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

QImage FakeOverlayServer::surface() const
{
    QImage picture(m_appearance.pixels.size(), QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    m_paint(painter);
    return picture;
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
