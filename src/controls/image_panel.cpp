#include "controls/image_panel.h"

#include "controls/dialog_skin.h"

#include <QGridLayout>
#include <QImageReader>
#include <QLabel>
#include <QStandardPaths>

namespace vornic {

namespace {

/// In points.
constexpr QSize previewSize(180, 180);
/// Pictures with more pixels take too long to look at in passing.
constexpr qint64 maxPreviewPixels = 40'000'000;

/// Of the last picture that was chosen; empty before that.
QString lastFolder;

QString firstFolder()
{
    if (!lastFolder.isEmpty() && QFileInfo(lastFolder).isDir())
        return lastFolder;
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    return QFileInfo(pictures).isDir() ? pictures : QDir::homePath();
}

QString patterns()
{
    QStringList all;
    for (const QByteArray &format : QImageReader::supportedImageFormats())
        all += QStringLiteral("*.") + QString::fromLatin1(format);
    return all.join(QLatin1Char(' '));
}

} // namespace

ImagePanel::ImagePanel(QWidget *parent, const QString &title)
    : QFileDialog(parent, title, firstFolder(), tr("Pictures (%1)").arg(patterns()))
{
    setFileMode(ExistingFile);
    setAcceptMode(AcceptOpen);
    // The desktop's own panel has no place for a preview and does not stand above the overlay.
    setOptions(DontUseNativeDialog | HideNameFilterDetails);
    addPreview();
    dressDialog(*this);
    connect(this, &QFileDialog::currentChanged, this, &ImagePanel::showPreview);
    connect(
        this, &QFileDialog::fileSelected, [](const QString &path) { lastFolder = QFileInfo(path).path(); });
}

void ImagePanel::addPreview()
{
    auto *grid = qobject_cast<QGridLayout *>(layout());
    if (!grid)
        return;
    m_picture = new QLabel(this);
    m_picture->setObjectName(QStringLiteral("preview"));
    m_picture->setFixedSize(previewSize);
    m_picture->setAlignment(Qt::AlignCenter);
    m_size = new QLabel(this);
    m_size->setAlignment(Qt::AlignHCenter);
    auto *column = new QVBoxLayout;
    column->addStretch();
    column->addWidget(m_picture);
    column->addWidget(m_size);
    column->addStretch();
    grid->addLayout(column, 0, grid->columnCount(), grid->rowCount(), 1);
    resize(width() + previewSize.width() + grid->horizontalSpacing(), height());
}

void ImagePanel::showPreview(const QString &path)
{
    if (!m_picture)
        return;
    m_picture->clear();
    m_size->clear();
    // A named pipe would be waited for until somebody writes into it.
    if (!QFileInfo(path).isFile())
        return;
    QImageReader reader(path);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (size.isEmpty())
        return;
    m_size->setText(tr("%1 × %2").arg(size.width()).arg(size.height()));
    if (qint64(size.width()) * size.height() > maxPreviewPixels)
        return;
    const QSize pixels = (QSizeF(previewSize) * devicePixelRatioF()).toSize();
    if (size.width() > pixels.width() || size.height() > pixels.height())
        reader.setScaledSize(size.scaled(pixels, Qt::KeepAspectRatio));
    QPixmap picture = QPixmap::fromImage(reader.read());
    picture.setDevicePixelRatio(devicePixelRatioF());
    m_picture->setPixmap(picture);
}

} // namespace vornic
