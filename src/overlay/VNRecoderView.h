#pragma once

#include "options/VNLogoContext.h"
#include "overlay/overlay_geometry.h"
#include "overlay/overlay_painting.h"

#include <QPointF>
#include <QPointer>
#include <QRectF>
#include <QWidget>

#include <optional>

class QMimeData;

namespace vornic {

class VNRecoderViewDelegate;
class VNRecoderWindow;

/// A drag of another program over the view.
struct DraggingInfo {
    const QMimeData *pasteboard = nullptr;
    Qt::DropActions sourceOperationMask = {};
    const QObject *source = nullptr; ///< null when it comes from another program
    QPointF location;                ///< in the view
};

/// The only view of the overlay's window: shows the recorded rectangle and the logo, and lets the mouse
/// change them.
///
/// Made with the window by the controller's interface file; main thread only. Its coordinates are device
/// pixels with the origin at the lower left and y up, whatever the toolkit's scale factor. Pressing and
/// dragging change no cursor; the window shows what a press would take hold of.
class VNRecoderView : public QWidget
{
    Q_OBJECT
public:
    explicit VNRecoderView(QWidget *parent = nullptr);
    ~VNRecoderView() override;

    [[nodiscard]] VNRecoderViewDelegate *delegate() const { return _delegate; }
    /// Borrowed; null: idle and in rectangle mode.
    void setDelegate(VNRecoderViewDelegate *delegate) { _delegate = delegate; }
    [[nodiscard]] bool isRecording();
    [[nodiscard]] bool isPaused();
    [[nodiscard]] bool isRecordFullScreen();
    /// Borrowed; may be null.
    void setLogoContext(VNLogoContext *logo);

    /// The view's own rectangle, in its coordinates.
    [[nodiscard]] QRectF bounds() const;
    /// Repaints what looks otherwise than at the last call, and where the logo was and is.
    void redraw();
    /// Whether a picture that is dropped becomes the logo.
    [[nodiscard]] bool takesPictures() const;
    /// What a press may take hold of: all of it, or the logo while the full display is recorded, or nothing
    /// while a recording runs. Device pixels, y down from the view's upper left.
    [[nodiscard]] QRegion mouseArea();
    /// The pixels that the logo is drawn within, as mouseArea(); empty without one.
    [[nodiscard]] QRect logoArea() const;
    /// The pointer's shape there while no button is held.
    [[nodiscard]] Qt::CursorShape cursorAt(QPointF mouseLocation);
    /// What shows where nothing is translucent: device pixels, y down from the view's upper left.
    [[nodiscard]] QRegion shape();

    /// Nothing for a number beyond 8.
    [[nodiscard]] std::optional<QPainterPath> getHotRegion(int region) const;
    [[nodiscard]] QPainterPath getHotScaleRegion() const { return hotScaleRegion(bounds()); }
    [[nodiscard]] QPainterPath getHotBounds() const { return hotBounds(bounds()); }
    [[nodiscard]] QRectF subjectRadiusBound(const QRectF &rectangle) const;
    [[nodiscard]] QPainterPath pathForLogo() const { return logoOutline(mLogoContext); }
    [[nodiscard]] static QRectF adjustLeftEdge(const QRectF &frame, qint64 size, const QRectF &bound);
    [[nodiscard]] static QRectF adjustTopEdge(const QRectF &frame, qint64 size, const QRectF &bound);
    [[nodiscard]] static QRectF adjustRightEdge(const QRectF &frame, qint64 size, const QRectF &bound);
    [[nodiscard]] static QRectF adjustBottomEdge(const QRectF &frame, qint64 size, const QRectF &bound);
    [[nodiscard]] static QPointF movedWindow(const QRectF &frame, qint64 x, qint64 y, const QRectF &bound);

    /// The first mouse button, at \a mouseLocation in screen coordinates: pixels count by their middle.
    void mouseDown(QPointF mouseLocation);
    void mouseDragged(QPointF mouseLocation);
    /// With a painter that has y up and the origin at the view's lower left.
    void drawRect(QPainter &painter);
    /// The same with a painter that has y down and the origin at the upper left.
    void paintPixels(QPainter &painter);

    /// Where in the view something is dropped while the mouse is at \a mouseLocation: the pixel's corner, so
    /// that pictures of even size stay on whole pixels.
    [[nodiscard]] QPointF dropPoint(QPointF mouseLocation) const;
    [[nodiscard]] Qt::DropAction draggingEntered(const DraggingInfo &sender);
    [[nodiscard]] bool prepareForDragOperation(const DraggingInfo &sender);
    void draggingExited(const DraggingInfo &sender);
    [[nodiscard]] bool performDragOperation(const DraggingInfo &sender);

    /// Where movements of the mouse are told while the window has the keyboard focus; nobody listens.
    void updateTrackingAreas() { _trackArea = bounds(); }
    [[nodiscard]] QRectF trackingArea() const { return _trackArea; }
    /// Sends notified() with \a name.
    void notifyMessage(const QString &name) { emit notified(name); }

signals:
    void notified(const QString &name);
    /// redraw() was called: the shape and what takes the mouse may be others now.
    void redrawn();
    /// Another program drags something over the view that it does not take.
    void draggingRefused();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    [[nodiscard]] VNRecoderWindow *recorderWindow() const;
    [[nodiscard]] double pixelScale() const;
    [[nodiscard]] OverlayLook look();
    [[nodiscard]] QPointF viewPoint(QPointF mouseLocation) const;
    [[nodiscard]] DraggingInfo draggingInfo(const QDropEvent &event) const;
    void repaintPixels(const QRegion &pixels);
    [[nodiscard]] DragRegion heldAt(QPointF mouseLocation);
    void moveLogo(DragDistance distance);

    QPointF dragStartPoint; ///< of the last press, in screen coordinates
    QRectF dragStartFrame;
    DragRegion dragRegion = DragRegion::TopLeft;
    QPointer<VNLogoContext> mLogoContext;
    QPointF mLogoPosition; ///< at the last press
    QRectF _trackArea;
    VNRecoderViewDelegate *_delegate = nullptr;

    Qt::DropAction m_dragAnswer = Qt::IgnoreAction; ///< to the drag that is over the view
    OverlayLook m_shownLook;
    QRect m_shownLogo;
    LogoStencil m_stencil; ///< kept only where nothing is translucent
};

} // namespace vornic
