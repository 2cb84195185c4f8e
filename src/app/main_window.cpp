#include "app/main_window.h"

#include "app/VornicAppDelegate.h"
#include "app/audio_device_list.h"
#include "options/VNOption.h"
#include "platform/key_path_binding.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QLabel>
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
    auto *layout = new QGridLayout(this);
    addRegion(*layout);
    addQuality(*layout);
    addSound(*layout);
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
    connect(&m_delegate, &VornicAppDelegate::allowedEditRecordRegionChanged, this, &MainWindow::reloadData);
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
    auto *full = new QRadioButton(tr("&Full display"), this);
    auto *part = new QRadioButton(tr("&Selected rectangle"), this);
    bind(full, "checked", "isRecordFullScreen");
    part->setChecked(!full->isChecked());
    m_otherControls.insert(m_otherControls.end(), { full, part });
    layout.addWidget(full, 0, 0, 1, 2);
    layout.addWidget(part, 0, 2, 1, 2);

    struct Field {
        const char *keyPath;
        QString label;
        int row;
        int column;
    };
    const Field fields[] = { { "offsetX", tr("Left"), 1, 0 },
                             { "offsetY", tr("Bottom"), 1, 2 },
                             { "width", tr("Width"), 2, 0 },
                             { "height", tr("Height"), 2, 2 } };
    for (const Field &field : fields) {
        auto *number = new QDoubleSpinBox(this);
        number->setDecimals(0);
        number->setRange(-100'000, 100'000);
        number->setSuffix(tr(" px"));
        number->setAccessibleName(field.label);
        number->setKeyboardTracking(false);
        bind(number, "value", field.keyPath);
        auto *label = new QLabel(field.label, this);
        label->setBuddy(number);
        layout.addWidget(label, field.row, field.column);
        layout.addWidget(number, field.row, field.column + 1);
        m_regionControls.push_back(number);
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
    auto *sound = new QCheckBox(tr("&Sound"), this);
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
    emit closed();
}

} // namespace vornic
