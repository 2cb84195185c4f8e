// The shell: launch and end, the options, and what may be edited when.

#include "app/VornicAppDelegate.h"
#include "app/session/audio_device_list.h"
#include "app/session/front_end.h"
#include "app/session/stored_options.h"
#include "audio/audio_control.h"
#include "audio/audio_recorder.h"
#include "base/serial_queue.h"
#include "capture/VNCGDisplay.h"
#include "capture/record/frame_composer.h"
#include "capture/spool/VNBufferMgr.h"
#include "controls/picture_file.h"
#include "display/bitmap_image.h"
#include "options/VNLogoContext.h"
#include "options/VNOption.h"
#include "overlay/VNRecoderWindow.h"
#include "overlay/VNRecorderWndCtrl.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QVersionNumber>

#include <utility>

namespace vornic {

VornicAppDelegate::VornicAppDelegate(FrontEnd &frontEnd)
    : VornicAppDelegate(frontEnd, nullptr)
{
}

VornicAppDelegate::VornicAppDelegate(FrontEnd &frontEnd, std::unique_ptr<VNOption> options)
    : m_frontEnd(frontEnd)
    , m_options(std::move(options))
    , m_optionsAreStored(!m_options)
    , mAudioDevicesView(std::make_unique<AudioDeviceList>())
{
    declareDependency("allowedEditOptions", { "state" });
    declareDependency("allowedEditRecordRegion", { "state", "options.recordRegion" });
    declareDependency("allowedEditLogo", { "state", "options.logoContext.LogoValidate" });
    declareDependency("allowedEditFont",
                      { "state", "options.logoContext.LogoValidate", "options.logoContext.LogoType" });
}

VornicAppDelegate::~VornicAppDelegate()
{
    // The capture queue is waited for, and its pass may itself be waiting for this thread.
    m_ending.request_stop();
    if (m_audioControl)
        m_audioControl->setDelegate(nullptr);
    if (m_recorderWndCtrl) {
        m_recorderWndCtrl->setDelegate(nullptr);
        m_recorderWndCtrl->setOptions(nullptr);
    }
}

void VornicAppDelegate::applicationDidFinishLaunching()
{
    // Stored options that cannot be read yield none once; the program starts all the same.
    if (!options())
        static_cast<void>(options());
    adoptOverlay();
    mBufferMgr = std::make_unique<VNBufferMgr>(4);
    mDisplay = std::make_unique<VNCGDisplay>();
    fillAudioDevices();
    recordRegionChanged();
}

void VornicAppDelegate::adoptOverlay()
{
    if (!m_recorderWndCtrl)
        return;
    m_recorderWndCtrl->setOptions(options());
    m_recorderWndCtrl->setDelegate(this);
    connect(options(), &VNOption::recordRegionChanged, this, &VornicAppDelegate::recordRegionChanged);
    connect(
        options()->logoContext(), &VNLogoContext::LogoValidateChanged, this, &VornicAppDelegate::logoChanged);
}

void VornicAppDelegate::recordRegionChanged()
{
    if (m_recorderWndCtrl)
        m_recorderWndCtrl->placeWindow();
    enableAudioDevices();
}

void VornicAppDelegate::logoChanged()
{
    if (m_recorderWndCtrl)
        m_recorderWndCtrl->placeWindow();
}

void VornicAppDelegate::setLogoImageFile(const QString &path)
{
    QString whyNot;
    const QImage picture = readPictureFile(path, &whyNot);
    if (picture.isNull()) {
        alertError(tr("The picture %1 cannot be read: %2.").arg(path, whyNot));
        return;
    }
    setLogoImage(picture);
}

void VornicAppDelegate::setLogoImage(const QImage &picture)
{
    options()->logoContext()->setNSImage(picture);
    reloadOverlay();
}

void VornicAppDelegate::selImageFile()
{
    m_frontEnd.chooseLogoImage([this](const std::optional<QString> &path) {
        if (path)
            setLogoImageFile(*path);
    });
}

void VornicAppDelegate::reloadOverlay()
{
    if (m_recorderWndCtrl)
        m_recorderWndCtrl->reloadData();
}

void VornicAppDelegate::setVideoQualiy(int index)
{
    options()->setRecordQuality(index);
}

void VornicAppDelegate::setFontAttrs()
{
    const QFont font = options()->logoContext()->fontAttrs().font.value_or(defaultLogoFont());
    m_frontEnd.orderFrontFontPanel(font, [this](const QFont &chosen) { changeFont(chosen); });
}

void VornicAppDelegate::changeFont(const QFont &font)
{
    options()->logoContext()->setFontAttrs({ font });
    reloadOverlay();
}

void VornicAppDelegate::setFontFillColor(const QColor &color)
{
    options()->logoContext()->setLogoFontFillColor(color);
    reloadOverlay();
}

void VornicAppDelegate::setFontStrokeColor(const QColor &color)
{
    options()->logoContext()->setLogoFontStrokeColor(color);
    reloadOverlay();
}

QColor VornicAppDelegate::attributeForChkTitle()
{
    constexpr float white = 0.615686297416687F;
    return QColor::fromRgbF(white, white, white);
}

void VornicAppDelegate::helpScreenRecord()
{
    if (m_helpDocument.isEmpty())
        return;
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation)
                      + QStringLiteral("/com.kavlor.vornic"));
    folder.mkpath(QStringLiteral("."));
    const QString copy = folder.filePath(QStringLiteral("Help.pdf"));
    if (!QFile::exists(copy))
        QFile::copy(m_helpDocument, copy);
    m_frontEnd.open(copy);
}

bool VornicAppDelegate::osOverLion(const QString &version)
{
    const QVersionNumber number = QVersionNumber::fromString(version);
    return number.majorVersion() > 10 || (number.majorVersion() == 10 && number.minorVersion() > 6);
}

void VornicAppDelegate::windowWillClose()
{
    if (m_recorderWndCtrl && m_recorderWndCtrl->window())
        m_recorderWndCtrl->window()->orderOut();
}

void VornicAppDelegate::terminate()
{
    m_terminating = true;
    if (m_state == 0)
        emit readyToTerminate();
    else
        stopRecord();
}

void VornicAppDelegate::applicationWillTerminate()
{
    saveOptions();
}

void VornicAppDelegate::saveOptions()
{
    if (m_optionsAreStored && m_options)
        storeOptions(*m_options);
}

VNOption *VornicAppDelegate::options()
{
    if (!m_options)
        m_options = loadOptions();
    return m_options.get();
}

bool VornicAppDelegate::allowedEditOptions() const
{
    return m_state == 0;
}

bool VornicAppDelegate::allowedEditRecordRegion()
{
    return m_state == 0 && options() && options()->recordsRectangle();
}

bool VornicAppDelegate::allowedEditLogo()
{
    return m_state == 0 && options() && options()->logoContext()->LogoValidate();
}

bool VornicAppDelegate::allowedEditFont()
{
    return allowedEditLogo() && options()->logoContext()->LogoType() == 0;
}

bool VornicAppDelegate::allowedAudioRecord() const
{
    return m_state == 0 && m_audioControl && !m_audioControl->inputDevicesName().isEmpty();
}

void VornicAppDelegate::alertError(const QString &text)
{
    m_frontEnd.alert(tr("Error"), text);
}

bool VornicAppDelegate::windowShouldClose()
{
    if (m_state != 1)
        return true;
    const bool quits = m_frontEnd.confirmQuit(
        tr("Are you sure to quit it?"),
        tr("The application is recording video, video recording will stop if it quit."));
    // The recording may have ended while the question stood.
    if (quits && m_state == 1)
        executeStopRecord();
    return quits;
}

} // namespace vornic
