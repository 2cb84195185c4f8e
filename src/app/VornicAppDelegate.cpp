#include "app/VornicAppDelegate.h"

#include "app/help_copy.h"
#include "app/session/desktop_services.h"
#include "app/session/program_windows.h"
#include "options/VNLogoContext.h"

namespace vornic {

VornicAppDelegate::VornicAppDelegate(const FrontEnd &frontEnd, std::unique_ptr<VNOption> options)
    : m_frontEnd(frontEnd)
    , m_settings(std::move(options))
{
    declareDependency("allowedEditOptions", { "state" });
    declareDependency("allowedEditRecordRegion", { "state", "options.recordRegion" });
    declareDependency("allowedEditLogo", { "state", "options.logoContext.LogoValidate" });
    declareDependency("allowedEditSound", { "state", "options.enableAudio", "allowedAudioRecord" });
    declareDependency("allowedEditSystemLevel", { "allowedEditSound", "options.recordsSystemSound" });
    declareDependency("allowedEditStopAfter", { "state", "options.stopsAfterTime" });
    declareDependency("allowedEditFont", { "allowedEditLogo", "options.logoContext.LogoType" });
}

void VornicAppDelegate::applicationDidFinishLaunching()
{
    // Stored options that cannot be read yield none once; the program starts all the same.
    if (!options())
        static_cast<void>(options());
    m_overlay.adopt(*options(), *this);
    m_session = std::make_unique<RecordingSession>(m_frontEnd, *options(), m_audioControl);
    m_logo = std::make_unique<LogoActions>(*options(), m_frontEnd.logoPanels, m_frontEnd.questions);
    connect(m_logo.get(), &LogoActions::changed, this, [this] { m_overlay.reload(); });
    connect(options(), &VNOption::recordRegionChanged, this, &VornicAppDelegate::recordRegionChanged);
    const VNLogoContext *logo = options()->logoContext();
    connect(logo, &VNLogoContext::LogoValidateChanged, this, &VornicAppDelegate::logoChanged);
    followSession();
    recordRegionChanged();
}

void VornicAppDelegate::followSession()
{
    connect(m_session.get(), &RecordingSession::stateChanged, this, [this] {
        notifyChanged({ "state" });
        m_overlay.reload();
        m_frontEnd.windows.reloadData();
    });
    connect(m_session.get(), &RecordingSession::pausedChanged, this, [this] { m_overlay.reload(); });
    connect(&audio(), &AudioInput::devicesChanged, this, [this] {
        m_settings.restoreAudioDevice(audio().devices());
        notifyChanged({ "allowedAudioRecord" });
    });
    m_settings.restoreAudioDevice(audio().devices());
    m_session->wishes().settlingTime = [this] { return m_overlay.settlingTime(); };
}

void VornicAppDelegate::recordRegionChanged()
{
    m_overlay.place();
    m_session->enableAudioDevices();
}

AllowedEdits VornicAppDelegate::allowedEdits()
{
    return { options(), isRecording(), m_session && audio().hasDevices() };
}

void VornicAppDelegate::helpScreenRecord()
{
    const QString file = helpCopy(m_helpDocument);
    if (!file.isEmpty())
        m_frontEnd.desktop.open(file);
}

void VornicAppDelegate::selAudioDevice()
{
    m_settings.rememberAudioDevice(audio().devices());
    audio().selAudioDevice();
}

} // namespace vornic
