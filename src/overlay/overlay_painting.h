#pragma once

#include <QImage>
#include <QRectF>
#include <QRegion>

#include <optional>

class QPainter;

namespace vornic {

class VNLogoContext;

/// How the overlay looks. Pure functions; main thread where a logo is drawn.

/// What decides the look, besides the logo.
struct OverlayLook {
    QRectF bounds; ///< of the view, device pixels
    bool isRecording = false;
    bool isKey = false;        ///< the window has the keyboard focus
    bool isTranslucent = true; ///< a compositing manager lets the desktop show through
    /// The pixels of the view that the window holds, y down from the view's upper left; nothing said: all.
    std::optional<QRect> held = std::nullopt;
    bool isPaused = false; ///< the recording is: the frame is dashed

    friend bool operator==(const OverlayLook &, const OverlayLook &) = default;
};

/// Paints the overlay on a translucent window, with a painter that has y up. \a logo may be null.
void paintOverlay(QPainter &painter, const OverlayLook &look, const VNLogoContext *logo);

/// The logo where nothing is translucent: every pixel is there or not. Rows stand for opacity: of every
/// eight, as many are left as the opacity asks for.
struct LogoStencil {
    QImage picture; ///< opaque colours
    QRegion shape;  ///< the pixels that show; y down from the view's upper left, as the two below
    QPoint topLeft;
};

/// Empty without a logo, and when it is switched off or lies outside \a bounds, or outside \a held.
[[nodiscard]] LogoStencil
stencilOf(const VNLogoContext *logo, const QRectF &bounds, const std::optional<QRect> &held = std::nullopt);
/// All that an overlay without translucency shows: the frame with its dark outline, the handles while idle, the logo.
[[nodiscard]] QRegion overlayShape(const OverlayLook &look, const LogoStencil &logo);
/// Paints that, with a painter that has y down from the view's upper left.
void paintShapedOverlay(QPainter &painter, const OverlayLook &look, const LogoStencil &logo);

/// What must be painted anew when \a before becomes \a after, without the logo; y down.
[[nodiscard]] QRegion changedRegion(const OverlayLook &before, const OverlayLook &after);
/// The pixels that \a logo is drawn within, y down; empty as its stencil is.
[[nodiscard]] QRect logoPixels(const VNLogoContext *logo, const QRectF &bounds);

} // namespace vornic
