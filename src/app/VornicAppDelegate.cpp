#include "app/VornicAppDelegate.h"

#include "app/help_copy.h"
#include "app/session/audio_device_list.h"
#include "app/session/desktop_services.h"
#include "app/session/program_windows.h"
#include "app/session/recording_questions.h"
#include "app/session/start_settings.h"
#include "app/session/stored_options.h"
#include "options/VNLogoContext.h"
#include "options/VNOption.h"
#include "overlay/VNRecoderWindow.h"
#include "overlay/VNRecorderWndCtrl.h"

#include <QVersionNumber>

#include <utility>

namespace vornic {

VornicAppDelegate::VornicAppDelegate(const FrontEnd &frontEnd, std::unique_ptr<VNOption> options)
    : m_frontEnd(frontEnd)
    , m_options(std::move(options))
    , m_optionsAreStored(!m_options)
{
    declareDependency("allowedEditOptions", { "state" });
    declareDependency("allowedEditRecordRegion", { "state", "options.recordRegion" });
    declareDependency("allowedEditLogo", { "state", "options.logoContext.LogoValidate" });
    declareDependency("allowedEditSound", { "state", "options.enableAudio", "allowedAudioRecord" });
    declareDependency("allowedEditSystemLevel", { "allowedEditSound", "options.recordsSystemSound" });
    declareDependency("allowedEditStopAfter", { "state", "options.stopsAfterTime" });
    declareDependency("allowedEditFont",
                      { "state", "options.logoContext.LogoValidate", "options.logoContext.LogoType" });
}

VornicAppDelegate::~VornicAppDelegate()
{
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
    m_session = std::make_unique<RecordingSession>(m_frontEnd, *m_options, m_audioControl);
    m_logo = std::make_unique<LogoActions>(*m_options, m_frontEnd.logoPanels, m_frontEnd.questions);
    connect(m_logo.get(), &LogoActions::changed, this, &VornicAppDelegate::reloadOverlay);
    followSession();
    recordRegionChanged();
}

void VornicAppDelegate::adoptOverlay()
{
    if (!m_recorderWndCtrl)
        return;
    m_recorderWndCtrl->setOptions(m_options.get());
    m_recorderWndCtrl->setDelegate(this);
    connect(m_options.get(), &VNOption::recordRegionChanged, this, &VornicAppDelegate::recordRegionChanged);
    connect(
        m_options->logoContext(), &VNLogoContext::LogoValidateChanged, this, &VornicAppDelegate::logoChanged);
}

void VornicAppDelegate::followSession()
{
    RecordingSession &session = *m_session;
    connect(&session, &RecordingSession::stateChanged, this, [this] {
        notifyChanged({ "state" });
        reloadOverlay();
        m_frontEnd.windows.reloadData();
    });
    connect(&session, &RecordingSession::pausedChanged, this, [this] {
        reloadOverlay();
        emit pausedChanged();
    });
    connect(&session, &RecordingSession::clockTicked, this, &VornicAppDelegate::clockTicked);
    connect(&session, &RecordingSession::recordingRefused, this, &VornicAppDelegate::recordingRefused);
    connect(&session, &RecordingSession::readyToTerminate, this, &VornicAppDelegate::readyToTerminate);
    connect(&audio(), &AudioInput::devicesChanged, this, [this] {
        restoreAudioDevice();
        notifyChanged({ "allowedAudioRecord" });
    });
    restoreAudioDevice();
    // A compositing manager shows a moment later that the overlay's tint and handles are gone.
    session.wishes().settlingTime = [this] {
        const VNRecoderWindow *overlay = m_recorderWndCtrl ? m_recorderWndCtrl->window() : nullptr;
        return std::chrono::milliseconds(overlay && overlay->isVisible() ? 100 : 0);
    };
}

/// Otherwise the list shows its first one, at each start and each time that devices come or go.
void VornicAppDelegate::restoreAudioDevice()
{
    const qsizetype index = audio().devices().titles().indexOf(start_settings::audioDevice());
    if (m_optionsAreStored && index >= 0)
        audio().devices().setIndexOfSelected(index);
}

void VornicAppDelegate::selAudioDevice()
{
    if (m_optionsAreStored)
        start_settings::setAudioDevice(audio().devices().stringValue());
    audio().selAudioDevice();
}

void VornicAppDelegate::reloadOverlay()
{
    if (m_recorderWndCtrl)
        m_recorderWndCtrl->reloadData();
}

void VornicAppDelegate::recordRegionChanged()
{
    if (m_recorderWndCtrl)
        m_recorderWndCtrl->placeWindow();
    m_session->enableAudioDevices();
}

void VornicAppDelegate::logoChanged()
{
    if (m_recorderWndCtrl)
        m_recorderWndCtrl->placeWindow();
}

void VornicAppDelegate::windowWillClose()
{
    if (m_recorderWndCtrl && m_recorderWndCtrl->window())
        m_recorderWndCtrl->window()->orderOut();
}

VNOption *VornicAppDelegate::options()
{
    if (!m_options)
        m_options = loadOptions();
    return m_options.get();
}

bool VornicAppDelegate::saveOptions()
{
    return !m_optionsAreStored || !m_options || storeOptions(*m_options);
}

void VornicAppDelegate::setVideoQualiy(int index)
{
    options()->setRecordQuality(index);
}

bool VornicAppDelegate::allowedEditRecordRegion()
{
    return !isRecording() && options() && options()->recordsRectangle();
}

bool VornicAppDelegate::allowedEditLogo()
{
    return !isRecording() && options() && options()->logoContext()->LogoValidate();
}

bool VornicAppDelegate::allowedEditFont()
{
    return allowedEditLogo() && options()->logoContext()->type() == LogoType::Text;
}

bool VornicAppDelegate::allowedAudioRecord() const
{
    return !isRecording() && m_session && audio().hasDevices();
}

bool VornicAppDelegate::allowedEditSound()
{
    return allowedAudioRecord() && options() && options()->enableAudio();
}

bool VornicAppDelegate::allowedEditSystemLevel()
{
    return allowedEditSound() && options()->recordsSystemSound();
}

bool VornicAppDelegate::allowedEditStopAfter()
{
    return allowedEditOptions() && options() && options()->stopsAfterTime();
}

void VornicAppDelegate::alertError(const QString &text)
{
    m_frontEnd.questions.alertError(text);
}

void VornicAppDelegate::helpScreenRecord()
{
    const QString file = m_helpDocument.isEmpty() ? QString() : helpCopy(m_helpDocument);
    if (!file.isEmpty())
        m_frontEnd.desktop.open(file);
}

QColor VornicAppDelegate::attributeForChkTitle()
{
    constexpr float white = 0.615686297416687F;
    return QColor::fromRgbF(white, white, white);
}

bool VornicAppDelegate::osOverLion(const QString &version)
{
    const QVersionNumber number = QVersionNumber::fromString(version);
    return number.majorVersion() > 10 || (number.majorVersion() == 10 && number.minorVersion() > 6);
}

} // namespace vornic
