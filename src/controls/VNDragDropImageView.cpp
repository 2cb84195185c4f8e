#include "controls/VNDragDropImageView.h"

#include "controls/image_panel.h"
#include "controls/painted_control_access.h"
#include "controls/picture_data.h"
#include "controls/press_keys.h"
#include "controls/skin_colors.h"
#include "controls/skin_painting.h"
#include "pictures/picture_file.h"

#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>

namespace vornic {

namespace {

constexpr double cornerRadius = 4;
constexpr double pictureInset = 4;
constexpr double highlightWidth = 5;
constexpr QSize defaultSize(120, 80);
constexpr QSize minSize(48, 48);

QString firstFile(const QMimeData &pasteboard)
{
    return pasteboard.urls().value(0).toLocalFile();
}

/// Whether pixels are dragged, or a file that looks like a picture: a large one is decoded only when it is dropped.
bool holdsPicture(const QMimeData *pasteboard)
{
    if (!pasteboard)
        return false;
    return pasteboard->hasImage() ? !pasteboard->imageData().value<QImage>().isNull()
                                  : isPictureFile(firstFile(*pasteboard));
}

/// Of the pixels that are dragged, or of the first of the files.
Picture pictureFrom(const QMimeData *pasteboard)
{
    if (!pasteboard)
        return {};
    return pasteboard->hasImage() ? Picture(pasteboard->imageData().value<QImage>())
                                  : readPictureFile(firstFile(*pasteboard));
}

} // namespace

QRectF fittedPictureRect(const QRectF &bounds, const QSizeF &size)
{
    QSizeF fitted = size;
    if (size.width() > bounds.width() || size.height() > bounds.height())
        fitted.scale(bounds.size(), Qt::KeepAspectRatio);
    const QPointF middle = bounds.center();
    return { QPointF(middle.x() - fitted.width() / 2, middle.y() - fitted.height() / 2), fitted };
}

QRect windowFrameForContents(const QRect &frame, const QMargins &decoration, const QSize &contents)
{
    const int bottom = frame.y() + frame.height();
    return QRect(QPoint(frame.x(), bottom - contents.height()), contents).marginsAdded(decoration);
}

VNDragDropImageView::VNDragDropImageView(QWidget *parent)
    : QWidget(parent)
    , m_image(std::make_shared<QImage>())
{
    PaintedControlAccess::install();
    setAcceptDrops(true);
    setFocusPolicy(Qt::StrongFocus);
}

void VNDragDropImageView::setImage(std::shared_ptr<QImage> image)
{
    if (image != m_image)
        showPicture(image ? Picture(*image) : Picture(), std::move(image));
}

void VNDragDropImageView::showPicture(const Picture &picture, std::shared_ptr<QImage> image)
{
    m_picture = picture;
    m_image = std::move(image);
    update();
    emit imageChanged();
}

QString VNDragDropImageView::stringValue() const
{
    return m_image && !m_image->isNull() ? tr("%1 × %2").arg(m_image->width()).arg(m_image->height())
                                         : QString();
}

void VNDragDropImageView::setPlaceholderText(const QString &text)
{
    m_placeholderText = text;
    update();
}

void VNDragDropImageView::setHighlight(bool highlight)
{
    if (highlight == m_highlight)
        return;
    m_highlight = highlight;
    update();
}

Qt::DropAction VNDragDropImageView::draggingEntered(const QDropEvent &sender)
{
    const bool takes = sender.possibleActions().testFlag(Qt::CopyAction) && holdsPicture(sender.mimeData());
    if (!takes)
        return Qt::IgnoreAction;
    setHighlight(true);
    return Qt::CopyAction;
}

void VNDragDropImageView::draggingExited()
{
    setHighlight(false);
}

bool VNDragDropImageView::prepareForDragOperation(const QDropEvent &sender)
{
    setHighlight(false);
    return holdsPicture(sender.mimeData());
}

bool VNDragDropImageView::performDragOperation(const QDropEvent &sender)
{
    const Picture dropped = sender.source() == this ? Picture() : pictureFrom(sender.mimeData());
    if (m_image && !dropped.isNull()) {
        *m_image = dropped.image();
        showPicture(dropped, m_image);
    }
    return true;
}

Qt::DropAction VNDragDropImageView::draggingSourceOperationMaskForLocal(bool /*local*/)
{
    return Qt::CopyAction;
}

void VNDragDropImageView::pasteboard(QMimeData &pasteboard, const QString &type) const
{
    if (!m_image || m_image->isNull())
        return;
    if (type == QStringLiteral("image/tiff"))
        pasteboard.setData(type, tiffData(*m_image));
    else if (type == QStringLiteral("application/pdf"))
        pasteboard.setData(type, pdfData(*m_image));
}

QRect VNDragDropImageView::windowWillUseStandardFrame(const QWidget &window, const QRect &defaultFrame) const
{
    if (!m_image || m_image->isNull())
        return defaultFrame;
    const QRect frame = window.frameGeometry();
    const QRect contents = window.geometry();
    const QMargins decoration(contents.left() - frame.left(),
                              contents.top() - frame.top(),
                              frame.right() - contents.right(),
                              frame.bottom() - contents.bottom());
    return windowFrameForContents(frame, decoration, m_image->size());
}

void VNDragDropImageView::drawBase(QPainter &view)
{
    const QRectF bounds = rect();
    view.save();
    view.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    view.setPen(isEnabled() ? skin::recessEdge() : skin::disabledEdge());
    view.setBrush(skin::recess());
    view.drawRoundedRect(bounds.adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
    const QRectF inside = bounds.adjusted(pictureInset, pictureInset, -pictureInset, -pictureInset);
    if (m_image && !m_image->isNull()) {
        view.setOpacity(isEnabled() ? 1 : 0.4);
        view.drawImage(fittedPictureRect(inside, m_image->size()), *m_image);
    } else {
        view.setPen(isEnabled() ? skin::title() : skin::disabledTitle());
        view.drawText(inside, Qt::AlignCenter | Qt::TextWordWrap, m_placeholderText);
    }
    view.restore();
    if (hasFocus())
        drawFocusOutline(view, bounds, cornerRadius);
}

void VNDragDropImageView::drawRect(const QRectF &dirtyRect, QPainter &view)
{
    drawBase(view);
    if (!m_highlight)
        return;
    view.save();
    view.setPen(QPen(skin::dropTarget(), highlightWidth, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    view.setBrush(Qt::NoBrush);
    view.drawRect(dirtyRect);
    view.restore();
}

void VNDragDropImageView::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    drawRect(event->rect(), painter);
}

void VNDragDropImageView::popUp()
{
    if (!isEnabled())
        return;
    auto *panel = new ImagePanel(window(), tr("Choose a picture"));
    panel->setAttribute(Qt::WA_DeleteOnClose);
    connect(panel, &QFileDialog::fileSelected, this, &VNDragDropImageView::loadFile);
    panel->open();
}

void VNDragDropImageView::loadFile(const QString &path)
{
    QString whyNot;
    const Picture picture = readPictureFile(path, &whyNot);
    if (picture.isNull())
        emit fileUnreadable(path, whyNot);
    else
        showPicture(picture, std::make_shared<QImage>(picture.image()));
}

void VNDragDropImageView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        popUp();
}

void VNDragDropImageView::keyPressEvent(QKeyEvent *event)
{
    if (isPressKey(*event))
        popUp();
    else
        event->ignore();
}

void VNDragDropImageView::dragEnterEvent(QDragEnterEvent *event)
{
    const Qt::DropAction action = draggingEntered(*event);
    event->setDropAction(action);
    event->setAccepted(action != Qt::IgnoreAction);
}

void VNDragDropImageView::dragMoveEvent(QDragMoveEvent *event)
{
    event->setDropAction(m_highlight ? Qt::CopyAction : Qt::IgnoreAction);
    event->setAccepted(m_highlight);
}

void VNDragDropImageView::dragLeaveEvent(QDragLeaveEvent * /*event*/)
{
    draggingExited();
}

void VNDragDropImageView::dropEvent(QDropEvent *event)
{
    const bool done = prepareForDragOperation(*event) && performDragOperation(*event);
    event->setDropAction(done ? Qt::CopyAction : Qt::IgnoreAction);
    event->setAccepted(done);
}

QSize VNDragDropImageView::sizeHint() const
{
    return defaultSize;
}

QSize VNDragDropImageView::minimumSizeHint() const
{
    return minSize;
}

} // namespace vornic
