#include "app/window/main_window.h"

#include "app/VornicAppDelegate.h"
#include "app/session/audio_device_list.h"
#include "app/session/level_watch.h"
#include "app/session/start_settings.h"
#include "app/session/time_text.h"
#include "app/window/headings.h"
#include "app/window/options_view_model.h"
#include "app/window/window_placement.h"
#include "display/display_backend.h"
#include "observing/key_path_binding.h"
#include "options/VNLogoContext.h"
#include "options/VNOption.h"
#include "options/logo/legacy_text.h"

#include <QCloseEvent>
#include <QMessageBox>
#include <QScreen>
#include <QSignalBlocker>
#include <QWindow>

#include <ui_MainWindow.h>

#include <algorithm>
#include <utility>

namespace vornic {

namespace {

constexpr QByteArrayView bindPrefix("bind_");
constexpr QByteArrayView viewPrefix("view.");
/// Of the controls that are folded away while there is no logo.
constexpr const char *partOfLogo = "partOfLogo";
/// Of the grid, for the logo's numbers.
constexpr int sliderColumn = 6;
constexpr int fieldColumn = 7;
constexpr int sliderWidth = 116;
/// Of the sliders beside the meter and the box of the system's sound.
constexpr int levelWidth = 90;

/// As the list of devices or of qualities holds it.
void showItems(VNComboboxView &view, const QStringList &titles)
{
    for (qint64 index = view.numberOfMenuItems(); index < titles.size(); ++index)
        view.addMenuItem(titles.at(index));
}

} // namespace

MainWindow::MainWindow(VornicAppDelegate &delegate)
    : m_delegate(delegate)
    , m_viewModel(std::make_unique<OptionsViewModel>(*delegate.options()))
    , m_ui(std::make_unique<Ui::MainWindow>())
{
    m_ui->setupUi(this);
    nameItems();
    emboldenHeadings(*this);
    m_ui->scaleSlider->setValueRange(0.1, 4, 0.05);
    m_ui->opacitySlider->setValueRange(0, 100, 1);
    m_ui->rotationSlider->setValueRange(-180, 180, 1);
    for (VNSliderCell *slider : findChildren<VNSliderCell *>())
        slider->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed); // as wide as the column
    for (VNSliderCell *slider : { m_ui->inputLevelSlider, m_ui->systemLevelSlider }) {
        slider->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
        slider->setFixedWidth(levelWidth);
        slider->setValueRange(0, VNOption::maxLevel, 5);
    }
    for (QPushButton *button : findChildren<QPushButton *>())
        button->setAutoDefault(true); // Enter presses the one with the focus
    QSizePolicy keepsItsPlace = m_ui->savePI->sizePolicy();
    keepsItsPlace.setRetainSizeWhenHidden(true);
    m_ui->savePI->setSizePolicy(keepsItsPlace);
    m_ui->savePI->hide();
    fillLists();
    bindControls();
    connectActions();
    reloadData();
    showLogo();
    foldLogo();
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

void MainWindow::fillLists()
{
    showItems(*m_ui->sizeView, OptionsViewModel::sizePresetTitles());
    showItems(*m_ui->mVideoQualityView, { tr("High"), tr("Medium") });
    m_ui->mVideoQualityView->setIndexOfSelected(m_delegate.options()->recordQuality());
    m_ui->mVideoQualityView->setTarget(this);
    m_ui->mVideoQualityView->setSelector("setVideoQualiy");
    QStringList countdowns;
    for (const int seconds : start_settings::countdowns)
        countdowns += seconds > 0 ? tr("%1 s").arg(seconds) : tr("None");
    showItems(*m_ui->countdownView, countdowns);
    m_ui->countdownView->setIndexOfSelected(
        std::ranges::find(start_settings::countdowns, start_settings::countdownSeconds())
        - start_settings::countdowns.begin());
    m_ui->countdownView->setTarget(this);
    m_ui->countdownView->setSelector("setCountdown");
    // Names of devices may be of any length; the window is not to be as wide.
    m_ui->mAudioDevicesView->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    m_ui->mAudioDevicesView->setPlaceholderText(tr("No audio input found"));
    m_ui->mAudioDevicesView->setTarget(this);
    m_ui->mAudioDevicesView->setSelector("selAudioDevice");
    connect(&m_delegate.audioDevicesView(), &AudioDeviceList::changed, this, &MainWindow::showAudioDevices);
    showAudioDevices();
}

void MainWindow::bindControls()
{
    const QList<QWidget *> controls = findChildren<QWidget *>();
    for (QWidget *control : controls) {
        const QByteArrayList names = control->dynamicPropertyNames();
        for (const QByteArray &name : names) {
            if (!name.startsWith(bindPrefix))
                continue;
            QByteArray path = control->property(name.constData()).toByteArray();
            QObject *root = &m_delegate;
            if (path.startsWith(viewPrefix)) {
                path = path.mid(viewPrefix.size());
                root = m_viewModel.get();
            }
            // The control owns it as its child.
            new KeyPathBinding(control, name.mid(bindPrefix.size()).constData(), root, path);
        }
    }
}

void MainWindow::connectActions()
{
    connectRegion();
    connectSound();
    connectLogo();
    connectStart();
    connectMenu();
    for (const auto changed :
         { &VornicAppDelegate::allowedEditLogoChanged, &VornicAppDelegate::allowedEditFontChanged })
        connect(&m_delegate, changed, this, &MainWindow::reloadData);
}

void MainWindow::connectRegion()
{
    VNOption &options = *m_delegate.options();
    connect(&options, &VNOption::recordRegionChanged, this, &MainWindow::keepOffRecorded);
    connect(options.logoContext(), &VNLogoContext::LogoValidateChanged, this, [this] {
        foldLogo();
        keepOffRecorded();
    });
    connect(m_viewModel.get(), &OptionsViewModel::sizePresetChosen, this, &MainWindow::keepOffRecorded);
    connect(m_ui->selectButton, &QAbstractButton::clicked, this, &MainWindow::selectOnScreenAsked);
}

void MainWindow::connectSound()
{
    const VNOption &options = *m_delegate.options();
    for (const auto changed : { &VNOption::inputLevelChanged, &VNOption::systemLevelChanged })
        connect(&options, changed, this, &MainWindow::showSoundLevels);
    showSoundLevels();
}

void MainWindow::setLevelWatch(LevelWatch *watch)
{
    m_levelWatch = watch;
    connect(watch, &LevelWatch::heard, m_ui->levelMeter, &LevelMeter::addPeak);
    connect(watch, &LevelWatch::nothingHeard, this, [this](const QString &name) {
        showStatus(tr("Nothing is heard from %1.").arg(name));
    });
    connect(m_delegate.options(), &VNOption::enableAudioChanged, this, &MainWindow::listen);
    connect(&m_delegate.audioDevicesView(), &AudioDeviceList::changed, this, &MainWindow::listen);
    for (const auto changed :
         { &VornicAppDelegate::stateChanged, &VornicAppDelegate::allowedAudioRecordChanged })
        connect(&m_delegate, changed, this, &MainWindow::listen);
    listen();
}

/// Nobody's microphone is open for a meter that nobody sees.
bool MainWindow::mayListen() const
{
    return isVisible() && !isMinimized() && !m_delegate.isRecording() && m_delegate.options()->enableAudio()
        && m_delegate.allowedAudioRecord();
}

void MainWindow::listen()
{
    if (!m_levelWatch)
        return;
    const bool listens = mayListen();
    m_levelWatch->listenTo(listens ? m_delegate.audioDevicesView().stringValue() : QString());
    m_ui->levelMeter->setListening(listens);
}

/// The numbers, which the sliders do not tell.
void MainWindow::showSoundLevels()
{
    const VNOption &options = *m_delegate.options();
    m_ui->inputLevelSlider->setToolTip(
        tr("How loud the input is in the movie: %1 %").arg(options.inputLevel()));
    m_ui->systemLevelSlider->setToolTip(
        tr("How loud is in the movie what the system plays: %1 %").arg(options.systemLevel()));
}

void MainWindow::connectLogo()
{
    const VNLogoContext &logo = *m_delegate.options()->logoContext();
    m_ui->mLogoFontFillColorWell->setColor(logo.LogoFontFillColor());
    m_ui->mLogoFontStrokeColorWell->setColor(logo.LogoFontStrokeColor());
    connectColorWell(*m_ui->mLogoFontFillColorWell, "setFontFillColor");
    connectColorWell(*m_ui->mLogoFontStrokeColorWell, "setFontStrokeColor");
    connect(&logo, &VNLogoContext::LogoTypeChanged, this, &MainWindow::showLogo);
    connect(&logo, &VNLogoContext::logoImageChanged, this, &MainWindow::showLogo);
    connect(&logo, &VNLogoContext::LogoTextChanged, this, &MainWindow::showForeignLetters);
    showForeignLetters();
    connect(m_ui->textPictureButton,
            &QAbstractButton::clicked,
            &m_delegate,
            &VornicAppDelegate::makePictureOfLogoText);
    m_ui->logoImageView->setPlaceholderText(tr("Drop a picture here"));
    connect(m_ui->logoImageView, &VNDragDropImageView::imageChanged, this, [this] {
        if (const Picture &picture = m_ui->logoImageView->picture(); !picture.isNull())
            m_delegate.setLogoPicture(picture);
    });
    connect(m_ui->logoImageView,
            &VNDragDropImageView::fileUnreadable,
            this,
            [this](const QString &path, const QString &whyNot) {
                m_delegate.alertError(tr("The picture %1 cannot be read: %2.").arg(path, whyNot));
            });
    connect(m_ui->chooseButton, &QAbstractButton::clicked, &m_delegate, &VornicAppDelegate::selImageFile);
    connect(m_ui->fontButton, &QAbstractButton::clicked, &m_delegate, &VornicAppDelegate::setFontAttrs);
}

void MainWindow::connectStart()
{
    connect(m_ui->recordButton, &QAbstractButton::clicked, this, &MainWindow::pressRecordButton);
    connect(&m_delegate.session(), &RecordingSession::clockTicked, this, &MainWindow::showClock);
    for (const auto changed : { &QGuiApplication::screenAdded, &QGuiApplication::screenRemoved })
        connect(qGuiApp, changed, this, &MainWindow::showMonitor);
    connect(&m_delegate.session(), &RecordingSession::pausedChanged, this, [this] { showClock(m_clock); });
    connect(m_ui->unfinishedLine, &UnfinishedLine::roomChanged, this, [this] {
        fitContents();
        keepOffRecorded();
    });
    connect(m_ui->statusLine, &StatusLine::openAsked, this, &MainWindow::openAsked);
    connect(m_ui->statusLine, &StatusLine::revealAsked, this, &MainWindow::revealAsked);
    setShortcut(start_settings::shortcut());
    m_ui->pauseShortcutField->setShortcut(start_settings::pauseShortcut());
    connectShortcut(*m_ui->shortcutField, &MainWindow::shortcutChosen);
    connectShortcut(*m_ui->pauseShortcutField, &MainWindow::pauseShortcutChosen);
}

void MainWindow::connectShortcut(const ShortcutField &field, void (MainWindow::*chosen)(const QString &))
{
    connect(&field, &ShortcutField::chosen, this, [this, chosen](const QString &portable) {
        setShortcutProblem({});
        emit(this->*chosen)(portable);
    });
    connect(&field, &ShortcutField::refused, this, [this] {
        setShortcutProblem(tr("Hold Ctrl, Alt or Super with it."));
    });
}

void MainWindow::connectMenu()
{
    connect(m_ui->mAboutApp, &QAction::triggered, this, &MainWindow::showAbout);
    connect(m_ui->mUnfinished, &QAction::triggered, this, &MainWindow::unfinishedAsked);
    connect(m_ui->mHideApp, &QAction::triggered, this, &QWidget::showMinimized);
    connect(m_ui->mQuitApp, &QAction::triggered, this, &QWidget::close);
    connect(m_ui->helpMenu, &QAction::triggered, &m_delegate, &VornicAppDelegate::helpScreenRecord);
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

void MainWindow::setCountdown()
{
    const auto index = static_cast<size_t>(m_ui->countdownView->indexOfSelected());
    start_settings::setCountdownSeconds(start_settings::countdowns.at(index));
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
    m_ui->mAudioDevicesView->setToolTip(
        tr("The device whose sound is recorded: %1").arg(m_ui->mAudioDevicesView->shownTitle()));
}

/// The controls of the kind of logo that it is, and its picture.
void MainWindow::showLogo()
{
    const VNLogoContext &logo = *m_delegate.options()->logoContext();
    m_ui->logoPages->setCurrentWidget(logo.isLogoTypeText() ? m_ui->logoTextPage : m_ui->logoImagePage);
    const QSignalBlocker blocker(m_ui->logoImageView);
    m_ui->logoImageView->setImage(std::make_shared<QImage>(logo.getNSImage()));
}

/// Tells, as soon as one is typed, that the text has letters which a text logo cannot show.
void MainWindow::showForeignLetters()
{
    m_ui->foreignLettersBox->setVisible(!isDrawnAsTyped(m_delegate.options()->logoContext()->LogoText()));
}

/// Tells which monitor is recorded, where there are several.
void MainWindow::showMonitor()
{
    const QString name = mainDisplay()->mainDisplayName();
    const QString text = name.isEmpty() ? QString() : tr("Recorded monitor: %1").arg(name);
    if (text == m_ui->monitorLine->text() && text.isEmpty() == m_ui->monitorLine->isHidden())
        return;
    m_ui->monitorLine->showText(text);
    m_ui->monitorLine->setVisible(!text.isEmpty());
    fitContents();
}

void MainWindow::foldLogo()
{
    const bool unfolded = m_delegate.options()->logoContext()->LogoValidate();
    for (QWidget *control : m_ui->contents->findChildren<QWidget *>()) {
        if (control->property(partOfLogo).toBool())
            control->setVisible(unfolded);
    }
    // What is above stays where it is, though the widest column may be empty now.
    m_ui->grid->setColumnMinimumWidth(sliderColumn, sliderWidth);
    m_ui->grid->setColumnMinimumWidth(fieldColumn, m_ui->logoXField->sizeHint().width());
    fitContents();
}

/// The window takes its new size at once.
void MainWindow::fitContents()
{
    m_ui->contents->layout()->activate();
    layout()->activate();
}

void MainWindow::keepOffRecorded()
{
    if (!isVisible() || isMinimized() || m_delegate.isRecording())
        return;
    if (m_tellsOfPlace)
        showStatus({});
    const QList<QRect> areas = recordedAreas(*m_delegate.options());
    if (areas.isEmpty())
        return;
    const QRect available = screen()->availableGeometry();
    const std::optional<QPoint> free = placeOff(frameGeometry(), available, areas);
    const QPoint place = free.value_or(placeWithin(frameGeometry(), available));
    if (place != frameGeometry().topLeft())
        move(place);
    const bool hasRectangle = m_delegate.options()->recordsRectangle();
    if (!free)
        showStatus(hasRectangle
                       ? tr("This window covers part of the rectangle; minimise it to see all of it.")
                       : tr("This window covers part of the logo; minimise it to see all of it."));
    else if (hasRectangle && m_frameIsExact && !m_frameIsExact())
        showStatus(tr("At this scale of the screen the frame may be a pixel off what is recorded."));
    else
        return;
    m_tellsOfPlace = true;
}

void MainWindow::showEvent(QShowEvent *event)
{
    QMainWindow::showEvent(event);
    listen();
    if (!event->spontaneous())
        windowHandle()->installEventFilter(this);
}

void MainWindow::hideEvent(QHideEvent *event)
{
    QMainWindow::hideEvent(event);
    listen();
}

void MainWindow::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange)
        listen();
}

/// The first time that the window is on the screen, when its frame and its place are known.
bool MainWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == windowHandle() && event->type() == QEvent::Expose && windowHandle()->isExposed()) {
        windowHandle()->removeEventFilter(this);
        QMetaObject::invokeMethod(this, &MainWindow::keepOffRecorded, Qt::QueuedConnection);
    }
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::setBusy(bool busy)
{
    reloadData(); // the capture ends when the writing begins to be busy
    m_ui->savePI->setRange(0, busy ? 0 : 1);
    m_ui->savePI->setVisible(busy);
}

void MainWindow::reloadData()
{
    showMonitor();
    const bool font = m_delegate.allowedEditFont();
    m_ui->mLogoFontFillColorWell->setEnabled(font);
    m_ui->mLogoFontStrokeColorWell->setEnabled(font);
    m_ui->logoImageView->setEnabled(m_delegate.allowedEditLogo() && !font);
    const bool recording = m_delegate.isRecording();
    const bool captures = m_delegate.session().isCapturing();
    m_ui->recordButton->setEnabled(captures || !recording);
    m_ui->recordButton->setStops(captures);
    if (captures && !m_shownRecording)
        showClock(0);
    if (!captures) {
        m_ui->recordButton->setText(tr("&Record"));
        m_ui->recordButton->setAccessibleName({});
        m_ui->recordButton->setToolTip(tr("Start recording: asks where the movie is kept"));
    }
    const bool wasRecording = std::exchange(m_shownRecording, recording);
    if (recording && !wasRecording)
        showStatus({});
    if (wasRecording && !recording)
        m_ui->recordButton->setFocus();
}

void MainWindow::pressRecordButton()
{
    if (m_delegate.session().isCapturing())
        m_delegate.stopRecord();
    else
        m_delegate.recorded();
}

void MainWindow::showClock(qint64 timestamp)
{
    if (!m_delegate.session().isCapturing())
        return;
    m_clock = timestamp;
    const std::optional<std::int64_t> left = m_delegate.session().recording().secondsLeft(timestamp);
    const QString clock = left ? timeLeftText(*left) : stringFromeTimestamp(timestamp);
    const QString text
        = m_delegate.isPaused() ? tr("Sto&p   %1, paused").arg(clock) : tr("Sto&p   %1").arg(clock);
    if (text == m_ui->recordButton->text())
        return;
    m_ui->recordButton->setText(text);
    m_ui->recordButton->setAccessibleName(tr("Stop recording"));
    m_ui->recordButton->setToolTip(tr("End the recording and write the movie"));
}

void MainWindow::showSaved(const QString &path, double seconds, const QString &flaws)
{
    m_tellsOfPlace = false;
    m_ui->statusLine->showSaved(path, seconds, flaws);
}

void MainWindow::showStatus(const QString &sentence)
{
    m_tellsOfPlace = false;
    m_ui->statusLine->showSentence(sentence);
}

UnfinishedLine &MainWindow::unfinishedLine()
{
    return *m_ui->unfinishedLine;
}

void MainWindow::setHasUnfinished(bool has)
{
    m_ui->mUnfinished->setEnabled(has);
}

void MainWindow::setShortcut(const QString &portable)
{
    m_ui->shortcutField->setShortcut(portable);
}

void MainWindow::setShortcutProblem(const QString &sentence)
{
    m_ui->shortcutProblem->showText(sentence);
}

void MainWindow::record(bool fullDisplay, const QString &file)
{
    if (m_delegate.isRecording() || QApplication::activeModalWidget())
        return;
    m_delegate.options()->setIsRecordFullScreen(fullDisplay);
    if (file.isEmpty())
        m_delegate.recorded();
    else
        m_delegate.session().recordNow(file);
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
