#include "overlay/VNRecoderView.h"

#include "display/main_display.h"
#include "geometry/y_up.h"
#include "options/VNLogoContext.h"
#include "overlay/VNRecoderViewDelegate.h"
#include "overlay/VNRecoderWindow.h"
#include "overlay/dropped_picture.h"
#include "overlay/overlay_server.h"

#include <QDropEvent>
#include <QMouseEvent>
#include <QPainter>

namespace vornic {

VNRecoderView::VNRecoderView(QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("recorderView"));
    setMouseTracking(true);
    setAccessibleName(tr("Recorded rectangle"));
}

VNRecoderView::~VNRecoderView() = default;

VNRecoderWindow *VNRecoderView::recorderWindow() const
{
    return qobject_cast<VNRecoderWindow *>(window());
}

double VNRecoderView::pixelScale() const
{
    const VNRecoderWindow *window = recorderWindow();
    return window ? window->pixelScale() : devicePixelRatioF();
}

bool VNRecoderView::isRecording()
{
    return _delegate && _delegate->VNRecorderViewWindowIsRecording(*this);
}

bool VNRecoderView::isPaused()
{
    return _delegate && _delegate->VNRecorderViewWindowIsPaused(*this);
}

bool VNRecoderView::isRecordFullScreen()
{
    return _delegate && _delegate->VNRecorderViewWindowIsRecordFullScreen(*this);
}

void VNRecoderView::setLogoContext(VNLogoContext *logo)
{
    if (mLogoContext)
        mLogoContext->disconnect(this);
    mLogoContext = logo;
    if (logo) {
        for (const auto changed : { &VNLogoContext::LogoValidateChanged,
                                    &VNLogoContext::LogoTypeChanged,
                                    &VNLogoContext::LogoTextChanged,
                                    &VNLogoContext::LogoPositionChanged,
                                    &VNLogoContext::LogoTransparencyChanged,
                                    &VNLogoContext::LogoScaleChanged,
                                    &VNLogoContext::LogoRotationChanged,
                                    &VNLogoContext::LogoFontFillColorChanged,
                                    &VNLogoContext::LogoFontStrokeColorChanged })
            connect(logo, changed, this, &VNRecoderView::redraw);
    }
    redraw();
}

QRectF VNRecoderView::bounds() const
{
    const VNRecoderWindow *window = recorderWindow();
    return { QPointF(0, 0), window ? QSizeF(window->pixelSize()) : QSizeF(size()) * devicePixelRatioF() };
}

OverlayLook VNRecoderView::look()
{
    const VNRecoderWindow *window = recorderWindow();
    OverlayLook look { bounds(), isRecording(), isActiveWindow(), !window || window->isTranslucent(), {} };
    look.isPaused = isPaused();
    if (window && window->heldPixels() != look.bounds.toAlignedRect())
        look.held = window->heldPixels();
    return look;
}

void VNRecoderView::redraw()
{
    const OverlayLook now = look();
    const QRect logo = logoPixels(mLogoContext, now.bounds);
    m_stencil = now.isTranslucent ? LogoStencil() : stencilOf(mLogoContext, now.bounds, now.held);
    repaintPixels(changedRegion(m_shownLook, now) + m_shownLogo + logo);
    m_shownLook = now;
    m_shownLogo = logo;
    emit redrawn();
}

void VNRecoderView::repaintPixels(const QRegion &pixels)
{
    const VNRecoderWindow *window = recorderWindow();
    if (window && window->isShownByServer()) {
        window->server().repaint(pixels);
        return;
    }
    const QPoint inset = window ? window->pixelInset() : QPoint();
    const double scale = pixelScale();
    QRegion dirty;
    for (const QRect &part : pixels) {
        const QRectF inWindow = part.translated(inset);
        dirty += QRectF(inWindow.topLeft() / scale, inWindow.size() / scale).toAlignedRect();
    }
    update(dirty);
}

QRegion VNRecoderView::shape()
{
    return overlayShape(m_shownLook, m_stencil);
}

QRegion VNRecoderView::mouseArea()
{
    if (isRecording())
        return {};
    return isRecordFullScreen() ? logoHitPixels(bounds(), mLogoContext) : QRegion(bounds().toAlignedRect());
}

QRect VNRecoderView::logoArea() const
{
    return logoPixels(mLogoContext, bounds());
}

std::optional<QPainterPath> VNRecoderView::getHotRegion(int region) const
{
    return hotRegion(bounds(), region);
}

QRectF VNRecoderView::subjectRadiusBound(const QRectF &rectangle) const
{
    return vornic::subjectRadiusBound(rectangle);
}

QRectF VNRecoderView::adjustLeftEdge(const QRectF &frame, qint64 size, const QRectF & /*bound*/)
{
    return adjustedLeftEdge(frame, size);
}

QRectF VNRecoderView::adjustTopEdge(const QRectF &frame, qint64 size, const QRectF &bound)
{
    return adjustedTopEdge(frame, size, bound);
}

QRectF VNRecoderView::adjustRightEdge(const QRectF &frame, qint64 size, const QRectF &bound)
{
    return adjustedRightEdge(frame, size, bound);
}

QRectF VNRecoderView::adjustBottomEdge(const QRectF &frame, qint64 size, const QRectF & /*bound*/)
{
    return adjustedBottomEdge(frame, size);
}

QPointF VNRecoderView::movedWindow(const QRectF &frame, qint64 x, qint64 y, const QRectF &bound)
{
    return movedOrigin(frame, { x, y }, bound);
}

QPointF VNRecoderView::viewPoint(QPointF mouseLocation) const
{
    const VNRecoderWindow *window = recorderWindow();
    return window ? mouseLocation - window->pixelOrigin() : mouseLocation;
}

void VNRecoderView::mouseDown(QPointF mouseLocation)
{
    if (isRecording())
        return;
    const bool fullScreen = isRecordFullScreen();
    dragStartPoint = mouseLocation;
    if (!fullScreen)
        dragStartFrame = recorderWindow() ? recorderWindow()->frame() : QRectF();
    mLogoPosition = mLogoContext ? mLogoContext->LogoPosition() : QPointF();
    dragRegion = heldAt(mouseLocation);
}

DragRegion VNRecoderView::heldAt(QPointF mouseLocation)
{
    const QPointF point = viewPoint(mouseLocation);
    if (isRecordFullScreen())
        return regionAtFullScreen(point, mLogoContext);
    // The handles are of device pixels, fingers are not.
    constexpr double slackOfScaled = 4;
    const double scale = pixelScale();
    return regionAt(point, bounds(), mLogoContext, scale >= 2 ? slackOfScaled * scale : 0);
}

Qt::CursorShape VNRecoderView::cursorAt(QPointF mouseLocation)
{
    const DragRegion held = heldAt(mouseLocation);
    const bool isNothing = isRecording() || (isRecordFullScreen() && held != DragRegion::Logo);
    return isNothing ? Qt::ArrowCursor : cursorOver(held);
}

void VNRecoderView::mouseDragged(QPointF mouseLocation)
{
    if (isRecording())
        return;
    const DragDistance distance = DragDistance::between(dragStartPoint, mouseLocation);
    if (dragRegion == DragRegion::Logo) {
        moveLogo(distance);
        return;
    }
    if (isRecordFullScreen())
        return;
    const QRectF frame = draggedFrame(dragStartFrame, dragRegion, distance, mainDisplayFrame());
    if (VNRecoderWindow *window = recorderWindow()) {
        window->setFrame(frame);
        window->showSize();
    }
    if (_delegate)
        _delegate->VNRecorderViewWindowFrameDidChanged(*this);
}

void VNRecoderView::moveLogo(DragDistance distance)
{
    if (mLogoContext)
        mLogoContext->setLogoPosition(mLogoPosition + distance.toPoint()); // which redraws
}

void VNRecoderView::drawRect(QPainter &painter)
{
    paintOverlay(painter, look(), mLogoContext);
}

void VNRecoderView::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.scale(1 / pixelScale(), 1 / pixelScale());
    if (const VNRecoderWindow *window = recorderWindow())
        painter.translate(window->pixelInset());
    paintPixels(painter);
}

void VNRecoderView::paintPixels(QPainter &painter)
{
    if (m_shownLook.isTranslucent) {
        flipPainter(painter, bounds().height());
        drawRect(painter);
    } else {
        paintShapedOverlay(painter, m_shownLook, m_stencil);
    }
}

void VNRecoderView::resizeEvent(QResizeEvent * /*event*/)
{
    updateTrackingAreas();
    redraw();
}

void VNRecoderView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    if (VNRecoderWindow *window = recorderWindow()) {
        window->becomeKey();
        mouseDown(window->mouseLocation(event->globalPosition()));
    }
}

void VNRecoderView::mouseMoveEvent(QMouseEvent *event)
{
    VNRecoderWindow *window = recorderWindow();
    if (!window)
        return;
    if (event->buttons().testFlag(Qt::LeftButton))
        mouseDragged(window->mouseLocation(event->globalPosition()));
    else if (event->buttons() == Qt::NoButton)
        window->showCursor(window->mouseLocation(event->globalPosition()));
}

bool VNRecoderView::takesPictures() const
{
    return mLogoContext && mLogoContext->LogoValidate() && mLogoContext->type() == LogoType::Picture;
}

Qt::DropAction VNRecoderView::draggingEntered(const DraggingInfo &sender)
{
    if (!takesPictures() || !sender.sourceOperationMask.testFlag(Qt::CopyAction)
        || !holdsPicture(sender.pasteboard))
        return Qt::IgnoreAction;
    redraw();
    return Qt::CopyAction;
}

bool VNRecoderView::prepareForDragOperation(const DraggingInfo &sender)
{
    if (!takesPictures())
        return false;
    redraw();
    return holdsPicture(sender.pasteboard);
}

void VNRecoderView::draggingExited(const DraggingInfo & /*sender*/)
{
    if (takesPictures())
        redraw();
}

bool VNRecoderView::performDragOperation(const DraggingInfo &sender)
{
    if (!takesPictures() || sender.source == this)
        return false;
    const Picture picture = droppedPicture(sender.pasteboard);
    if (picture.isNull())
        return false;
    mLogoContext->setPicture(picture);
    mLogoContext->setLogoPosition(sender.location - QRectF(picture.image().rect()).center());
    redraw();
    return true;
}

QPointF VNRecoderView::dropPoint(QPointF mouseLocation) const
{
    return viewPoint(mouseLocation) + QPointF(-0.5, 0.5);
}

DraggingInfo VNRecoderView::draggingInfo(const QDropEvent &event) const
{
    const VNRecoderWindow *window = recorderWindow();
    const QPointF global = mapToGlobal(event.position());
    return { event.mimeData(),
             event.possibleActions(),
             event.source(),
             dropPoint(window ? window->mouseLocation(global) : global) };
}

void VNRecoderView::dragEnterEvent(QDragEnterEvent *event)
{
    m_dragAnswer = draggingEntered(draggingInfo(*event));
    if (m_dragAnswer == Qt::IgnoreAction)
        emit draggingRefused();
    dragMoveEvent(event);
}

void VNRecoderView::dragMoveEvent(QDragMoveEvent *event)
{
    event->setDropAction(m_dragAnswer);
    event->setAccepted(m_dragAnswer != Qt::IgnoreAction);
}

void VNRecoderView::dragLeaveEvent(QDragLeaveEvent * /*event*/)
{
    draggingExited({});
}

void VNRecoderView::dropEvent(QDropEvent *event)
{
    const DraggingInfo info = draggingInfo(*event);
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(prepareForDragOperation(info) && performDragOperation(info));
}

} // namespace vornic
