#include "app/main_window.h"

#include "app/VornicAppDelegate.h"
#include "app/audio_device_list.h"
#include "options/VNOption.h"
#include "platform/key_path_binding.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QImageReader>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>

namespace vornic {

MainWindow::MainWindow(VornicAppDelegate &delegate)
    : m_delegate(delegate)
    , m_recordButton(new QPushButton(tr("&Record"), this))
    , savePI(new QProgressBar(this))
{
    setWindowTitle(QStringLiteral("Vornic"));
    // Above the overlay, which is above everything else.
    setWindowFlag(Qt::WindowStaysOnTopHint);
    auto *layout = new QGridLayout(this);
    addRegion(*layout);
    addQuality(*layout);
    addSound(*layout);
    addLogo(*layout);
    addAfterwards(*layout);
    m_recordButton->setObjectName(QStringLiteral("recordButton"));
    m_recordButton->setDefault(true);
    m_recordButton->setMinimumHeight(40);
    layout->addWidget(m_recordButton, layout->rowCount(), 0, 1, 4);
    savePI->setRange(0, 1);
    savePI->setTextVisible(false);
    savePI->setMaximumHeight(6);
    layout->addWidget(savePI, layout->rowCount(), 0, 1, 4);
    connect(m_recordButton, &QPushButton::clicked, &m_delegate, &VornicAppDelegate::recorded);
    for (const auto changed : { &VornicAppDelegate::allowedEditRecordRegionChanged,
                                &VornicAppDelegate::allowedEditLogoChanged,
                                &VornicAppDelegate::allowedEditFontChanged })
        connect(&m_delegate, changed, this, &MainWindow::reloadData);
    reloadData();
    m_recordButton->setFocus();
}

void MainWindow::bind(QWidget *control, const char *property, const char *keyPath)
{
    // The control owns it as its child.
    new KeyPathBinding(control, property, &m_delegate, QByteArray("options.") + keyPath);
}

void MainWindow::addRegion(QGridLayout &layout)
{
    auto *regions = new QButtonGroup(this);
    auto *full = new QRadioButton(tr("&Full display"), this);
    auto *part = new QRadioButton(tr("&Selected rectangle"), this);
    regions->addButton(full);
    regions->addButton(part);
    bind(full, "checked", "isRecordFullScreen");
    part->setChecked(!full->isChecked());
    m_otherControls.insert(m_otherControls.end(), { full, part });
    layout.addWidget(full, 0, 0, 1, 2);
    layout.addWidget(part, 0, 2, 1, 2);

    addNumbers(layout,
               { { "offsetX", tr("Left"), -100'000, 100'000, 0 },
                 { "offsetY", tr("Bottom"), -100'000, 100'000, 0 },
                 { "width", tr("Width"), -100'000, 100'000, 0 },
                 { "height", tr("Height"), -100'000, 100'000, 0 } },
               m_regionControls);
}

/// Two in a row, each behind its label.
void MainWindow::addNumbers(QGridLayout &layout,
                            const std::vector<NumberField> &fields,
                            std::vector<QWidget *> &controls)
{
    int row = layout.rowCount() - 1;
    int column = 2;
    for (const NumberField &field : fields) {
        auto *number = new QDoubleSpinBox(this);
        number->setDecimals(field.decimals);
        number->setRange(field.least, field.most);
        number->setSingleStep(field.decimals > 0 ? 0.1 : 1);
        number->setAccessibleName(field.label);
        number->setKeyboardTracking(false);
        bind(number, "value", field.keyPath);
        auto *label = new QLabel(field.label, this);
        label->setBuddy(number);
        column = 2 - column;
        row += column == 0 ? 1 : 0;
        layout.addWidget(label, row, column);
        layout.addWidget(number, row, column + 1);
        controls.push_back(number);
    }
}

void MainWindow::addQuality(QGridLayout &layout)
{
    auto *quality = new QComboBox(this);
    quality->addItems({ tr("High"), tr("Medium") });
    bind(quality, "currentIndex", "recordQuality");
    auto *label = new QLabel(tr("&Quality"), this);
    label->setBuddy(quality);
    const int row = layout.rowCount();
    layout.addWidget(label, row, 0);
    layout.addWidget(quality, row, 1, 1, 3);
    m_otherControls.push_back(quality);
}

void MainWindow::addSound(QGridLayout &layout)
{
    auto *sound = new QCheckBox(tr("Sou&nd"), this);
    bind(sound, "checked", "enableAudio");
    auto *devices = new QComboBox(this);
    devices->setObjectName(QStringLiteral("mAudioDevicesView"));
    devices->setAccessibleName(tr("Audio input device"));
    devices->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    const int row = layout.rowCount();
    layout.addWidget(sound, row, 0);
    layout.addWidget(devices, row, 1, 1, 3);
    m_otherControls.push_back(sound);

    AudioDeviceList &list = m_delegate.audioDevicesView();
    const auto show = [devices, &list] {
        const QSignalBlocker blocker(devices);
        while (devices->count() < list.numberOfMenuItems())
            devices->addItem(list.titles().at(devices->count()));
        devices->setCurrentIndex(static_cast<int>(list.indexOfSelected()));
        devices->setEnabled(list.isEnabled());
    };
    connect(&list, &AudioDeviceList::changed, this, show);
    connect(devices, &QComboBox::activated, this, [this, &list](int index) {
        list.setIndexOfSelected(index);
        m_delegate.selAudioDevice();
    });
    show();
}

void MainWindow::addLogo(QGridLayout &layout)
{
    auto *logo = new QCheckBox(tr("&Logo"), this);
    bind(logo, "checked", "logoContext.LogoValidate");
    m_otherControls.push_back(logo);
    auto *text = new QRadioButton(tr("&Text"), this);
    auto *picture = new QRadioButton(tr("P&icture"), this);
    auto *kind = new QButtonGroup(this);
    kind->addButton(text);
    kind->addButton(picture);
    bind(text, "checked", "logoContext.isLogoTypeText");
    picture->setChecked(!text->isChecked());
    auto *choose = new QPushButton(tr("&Choose…"), this);
    connect(choose, &QPushButton::clicked, this, &MainWindow::chooseLogoImage);
    auto *words = new QLineEdit(this);
    words->setAccessibleName(tr("The logo's text"));
    bind(words, "text", "logoContext.LogoText");
    const int row = layout.rowCount();
    layout.addWidget(logo, row, 0);
    layout.addWidget(text, row, 1);
    layout.addWidget(picture, row, 2);
    layout.addWidget(choose, row, 3);
    layout.addWidget(words, row + 1, 0, 1, 4);
    m_logoControls.insert(m_logoControls.end(), { text, picture, choose });
    m_textControls.push_back(words);
    addNumbers(layout,
               { { "logoContext.logoPositionX", tr("Logo left"), -100'000, 100'000, 0 },
                 { "logoContext.logoPositionY", tr("Logo bottom"), -100'000, 100'000, 0 },
                 { "logoContext.LogoScale", tr("Scale"), 0.01, 100, 2 },
                 { "logoContext.LogoTransparency", tr("Opacity"), 0, 255, 0 },
                 { "logoContext.LogoRotation", tr("Rotation"), -360, 360, 0 } },
               m_logoControls);
}

void MainWindow::chooseLogoImage()
{
    auto *panel = new QFileDialog(this, tr("Choose the logo's picture"));
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setWindowModality(Qt::WindowModal);
    panel->setFileMode(QFileDialog::ExistingFile);
    QStringList types;
    for (const QByteArray &type : QImageReader::supportedImageFormats())
        types += QStringLiteral("*.%1").arg(QString::fromLatin1(type));
    panel->setNameFilter(tr("Pictures (%1)").arg(types.join(u' ')));
    connect(panel, &QFileDialog::fileSelected, &m_delegate, &VornicAppDelegate::setLogoImageFile);
    panel->open();
}

void MainWindow::addAfterwards(QGridLayout &layout)
{
    auto *reveal = new QCheckBox(tr("Show the movie in its &folder"), this);
    bind(reveal, "checked", "showInFinderWhenFinished");
    auto *open = new QCheckBox(tr("&Open the movie"), this);
    bind(open, "checked", "openRecordedWhenFinished");
    layout.addWidget(reveal, layout.rowCount(), 0, 1, 4);
    layout.addWidget(open, layout.rowCount(), 0, 1, 4);
    m_otherControls.insert(m_otherControls.end(), { reveal, open });
}

void MainWindow::setSaving(bool saving)
{
    savePI->setRange(0, saving ? 0 : 1);
}

void MainWindow::reloadData()
{
    for (QWidget *control : m_regionControls)
        control->setEnabled(m_delegate.allowedEditRecordRegion());
    for (QWidget *control : m_logoControls)
        control->setEnabled(m_delegate.allowedEditLogo());
    for (QWidget *control : m_textControls)
        control->setEnabled(m_delegate.allowedEditFont());
    for (QWidget *control : m_otherControls)
        control->setEnabled(m_delegate.allowedEditOptions());
    m_recordButton->setEnabled(m_delegate.state() == 0);
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
