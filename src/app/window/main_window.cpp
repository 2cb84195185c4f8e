#include "app/window/main_window.h"

#include "app/VornicAppDelegate.h"
#include "app/session/audio_device_list.h"
#include "app/window/headings.h"
#include "observing/key_path_binding.h"
#include "options/VNLogoContext.h"
#include "options/VNOption.h"

#include <QCloseEvent>
#include <QMessageBox>
#include <QSignalBlocker>

#include <ui_MainWindow.h>

namespace vornic {

namespace {

constexpr QByteArrayView bindPrefix("bind_");

/// As the list of devices or of qualities holds it.
void showItems(VNComboboxView &view, const QStringList &titles)
{
    for (qint64 index = view.numberOfMenuItems(); index < titles.size(); ++index)
        view.addMenuItem(titles.at(index));
}

} // namespace

MainWindow::MainWindow(VornicAppDelegate &delegate)
    : m_delegate(delegate)
    , m_ui(std::make_unique<Ui::MainWindow>())
{
    m_ui->setupUi(this);
    nameItems();
    emboldenHeadings(*this);
    m_ui->scaleSlider->setValueRange(0.1, 4, 0.05);
    m_ui->opacitySlider->setValueRange(0, 255, 1);
    m_ui->rotationSlider->setValueRange(-180, 180, 1);
    QSizePolicy keepsItsPlace = m_ui->savePI->sizePolicy();
    keepsItsPlace.setRetainSizeWhenHidden(true);
    m_ui->savePI->setSizePolicy(keepsItsPlace);
    m_ui->savePI->hide();
    bindControls();
    connectActions();
    reloadData();
    showLogo();
    layout()->setSizeConstraint(QLayout::SetFixedSize);
    m_ui->recordButton->setFocus();
}

MainWindow::~MainWindow() = default;

void MainWindow::nameItems()
{
    const QString product = QStringLiteral("Vornic");
    setWindowTitle(product);
    m_ui->mAboutApp->setText(tr("About %1").arg(product));
    m_ui->mHideApp->setText(tr("Hide %1").arg(product));
    m_ui->mQuitApp->setText(tr("Quit %1").arg(product));
    m_ui->helpMenu->setText(tr("%1 Help").arg(product));
}

void MainWindow::bindControls()
{
    const QList<QWidget *> controls = findChildren<QWidget *>();
    for (QWidget *control : controls) {
        const QByteArrayList names = control->dynamicPropertyNames();
        for (const QByteArray &name : names) {
            if (name.startsWith(bindPrefix)) // the control owns it as its child
                new KeyPathBinding(control,
                                   name.mid(bindPrefix.size()).constData(),
                                   &m_delegate,
                                   control->property(name.constData()).toByteArray());
        }
    }
}

void MainWindow::connectActions()
{
    showItems(*m_ui->mVideoQualityView, { tr("High"), tr("Medium") });
    m_ui->mVideoQualityView->setIndexOfSelected(m_delegate.options()->recordQuality());
    m_ui->mVideoQualityView->setTarget(this);
    m_ui->mVideoQualityView->setSelector("setVideoQualiy");
    m_ui->mAudioDevicesView->setTarget(this);
    m_ui->mAudioDevicesView->setSelector("selAudioDevice");
    connect(&m_delegate.audioDevicesView(), &AudioDeviceList::changed, this, &MainWindow::showAudioDevices);
    showAudioDevices();

    const VNLogoContext &logo = *m_delegate.options()->logoContext();
    m_ui->mLogoFontFillColorWell->setColor(logo.LogoFontFillColor());
    m_ui->mLogoFontStrokeColorWell->setColor(logo.LogoFontStrokeColor());
    connectColorWell(*m_ui->mLogoFontFillColorWell, "setFontFillColor");
    connectColorWell(*m_ui->mLogoFontStrokeColorWell, "setFontStrokeColor");
    connect(&logo, &VNLogoContext::LogoTypeChanged, this, &MainWindow::showLogo);
    connect(&logo, &VNLogoContext::logoImageChanged, this, &MainWindow::showLogo);
    m_ui->logoImageView->setPlaceholderText(tr("Drop a picture here"));
    connect(m_ui->logoImageView, &VNDragDropImageView::imageChanged, this, [this] {
        if (const auto &picture = m_ui->logoImageView->image(); picture && !picture->isNull())
            m_delegate.setLogoImage(*picture);
    });
    connect(m_ui->logoImageView,
            &VNDragDropImageView::fileUnreadable,
            this,
            [this](const QString &path, const QString &whyNot) {
                m_delegate.alertError(tr("The picture %1 cannot be read: %2.").arg(path, whyNot));
            });
    connect(m_ui->chooseButton, &QAbstractButton::clicked, &m_delegate, &VornicAppDelegate::selImageFile);
    connect(m_ui->fontButton, &QAbstractButton::clicked, &m_delegate, &VornicAppDelegate::setFontAttrs);

    connect(m_ui->recordButton, &QAbstractButton::clicked, &m_delegate, &VornicAppDelegate::recorded);
    connect(m_ui->mAboutApp, &QAction::triggered, this, &MainWindow::showAbout);
    connect(m_ui->mHideApp, &QAction::triggered, this, &QWidget::showMinimized);
    connect(m_ui->mQuitApp, &QAction::triggered, this, &QWidget::close);
    connect(m_ui->helpMenu, &QAction::triggered, &m_delegate, &VornicAppDelegate::helpScreenRecord);
    for (const auto changed :
         { &VornicAppDelegate::allowedEditLogoChanged, &VornicAppDelegate::allowedEditFontChanged })
        connect(&m_delegate, changed, this, &MainWindow::reloadData);
}

void MainWindow::connectColorWell(VNColorWell &well, const char *selector)
{
    well.setTarget(this);
    well.setSelector(selector);
}

void MainWindow::setVideoQualiy()
{
    m_delegate.setVideoQualiy(static_cast<int>(m_ui->mVideoQualityView->indexOfSelected()));
}

void MainWindow::selAudioDevice()
{
    m_delegate.audioDevicesView().setIndexOfSelected(m_ui->mAudioDevicesView->indexOfSelected());
    m_delegate.selAudioDevice();
}

void MainWindow::setFontFillColor()
{
    m_delegate.setFontFillColor(m_ui->mLogoFontFillColorWell->color());
}

void MainWindow::setFontStrokeColor()
{
    m_delegate.setFontStrokeColor(m_ui->mLogoFontStrokeColorWell->color());
}

void MainWindow::showAudioDevices()
{
    const AudioDeviceList &list = m_delegate.audioDevicesView();
    showItems(*m_ui->mAudioDevicesView, list.titles());
    m_ui->mAudioDevicesView->setIndexOfSelected(list.indexOfSelected());
    m_ui->mAudioDevicesView->setEnabled(list.isEnabled());
}

/// The controls of the kind of logo that it is, and its picture.
void MainWindow::showLogo()
{
    const VNLogoContext &logo = *m_delegate.options()->logoContext();
    m_ui->logoPages->setCurrentWidget(logo.isLogoTypeText() ? m_ui->logoTextPage : m_ui->logoImagePage);
    const QSignalBlocker blocker(m_ui->logoImageView);
    m_ui->logoImageView->setImage(std::make_shared<QImage>(logo.getNSImage()));
}

void MainWindow::setBusy(bool busy)
{
    m_ui->savePI->setRange(0, busy ? 0 : 1);
    m_ui->savePI->setVisible(busy);
}

void MainWindow::reloadData()
{
    const bool font = m_delegate.allowedEditFont();
    m_ui->mLogoFontFillColorWell->setEnabled(font);
    m_ui->mLogoFontStrokeColorWell->setEnabled(font);
    m_ui->logoImageView->setEnabled(m_delegate.allowedEditLogo() && !font);
    m_ui->recordButton->setEnabled(!m_delegate.isRecording());
}

void MainWindow::record(bool fullDisplay, const QString &file)
{
    if (m_delegate.isRecording() || QApplication::activeModalWidget())
        return;
    m_delegate.options()->setIsRecordFullScreen(fullDisplay);
    if (file.isEmpty())
        m_delegate.recorded();
    else
        m_delegate.recordNow(file);
}

void MainWindow::showAbout()
{
    QMessageBox box(this);
    box.setWindowTitle(tr("About %1").arg(windowTitle()));
    box.setIconPixmap(windowIcon().pixmap(64));
    box.setText(tr("<b>Vornic %1</b><br>Records the screen of the Linux desktop.")
                    .arg(QCoreApplication::applicationVersion()));
    box.setInformativeText(tr("Free software under the GNU General Public License, version 3 or later."));
    box.exec();
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (!m_delegate.windowShouldClose()) {
        event->ignore();
        return;
    }
    event->accept();
    m_delegate.windowWillClose();
    emit closed();
}

} // namespace vornic
