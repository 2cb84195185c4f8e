#pragma once

#include "pictures/picture.h"

#include <QImage>
#include <QRectF>
#include <QWidget>

#include <memory>

class QDropEvent;
class QMimeData;

namespace vornic {

/// Where a picture of \a size is shown in \a bounds: whole, in the middle, smaller where it has to be.
[[nodiscard]] QRectF fittedPictureRect(const QRectF &bounds, const QSizeF &size);
/// \a frame with a window's decoration of the widths \a decoration around it, so that its contents have the
/// size \a contents and their lower left corner where that of \a frame is; y down.
[[nodiscard]] QRect
windowFrameForContents(const QRect &frame, const QMargins &decoration, const QSize &contents);

/// An image well: shows a picture, and takes another that is dropped on it or chosen in a file panel.
///
/// Made by whoever builds a window, as a child of it; main thread only. Space and Enter open the file panel.
class VNDragDropImageView : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(bool highlight READ highlight)
    /// The size of the picture, as text; empty when there is none.
    Q_PROPERTY(QString stringValue READ stringValue NOTIFY imageChanged)
public:
    explicit VNDragDropImageView(QWidget *parent = nullptr);

    /// The picture that is shown; an empty one at first, null when that was set. A drop changes the object
    /// itself.
    [[nodiscard]] const std::shared_ptr<QImage> &image() const { return m_image; }
    void setImage(std::shared_ptr<QImage> image);
    /// What image() was set to or took, with the file that it came from.
    [[nodiscard]] const Picture &picture() const { return m_picture; }
    [[nodiscard]] QString stringValue() const;
    /// Shown while there is no picture.
    void setPlaceholderText(const QString &text);

    /// A drag that can be taken is over the view.
    [[nodiscard]] bool highlight() const { return m_highlight; }
    [[nodiscard]] Qt::DropAction draggingEntered(const QDropEvent &sender);
    void draggingExited();
    [[nodiscard]] bool prepareForDragOperation(const QDropEvent &sender);
    /// Always true. Where the picture is null, there is no object to take the new one.
    bool performDragOperation(const QDropEvent &sender);
    [[nodiscard]] static Qt::DropAction draggingSourceOperationMaskForLocal(bool local);
    /// A click that brings the window to the front counts.
    [[nodiscard]] static bool acceptsFirstMouse() { return true; }
    /// Puts the picture on \a pasteboard as \a type, "image/tiff" or "application/pdf"; nothing for others.
    void pasteboard(QMimeData &pasteboard, const QString &type) const;
    /// The zoomed frame of \a window: its contents are as large as the picture.
    [[nodiscard]] QRect windowWillUseStandardFrame(const QWidget &window, const QRect &defaultFrame) const;

    /// Strokes the edge of \a dirtyRect while highlight is set.
    void drawRect(const QRectF &dirtyRect, QPainter &view);
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

public slots:
    /// Opens the file panel as a sheet on the window, when enabled.
    void popUp();
    void loadFile(const QString &path);

signals:
    /// There is another picture, or the present one has other pixels.
    void imageChanged();
    /// The chosen file cannot be read as a picture; the one that is shown stays. \a whyNot ends
    /// the sentence "It cannot be read: ".
    void fileUnreadable(const QString &path, const QString &whyNot);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void setHighlight(bool highlight);
    void drawBase(QPainter &view);
    void showPicture(const Picture &picture, std::shared_ptr<QImage> image);

    std::shared_ptr<QImage> m_image;
    Picture m_picture;
    QString m_placeholderText;
    bool m_highlight = false;
};

} // namespace vornic
