#include "app/user_settings.h"

#include "app/session/audio_device_list.h"
#include "app/session/start_settings.h"
#include "app/session/stored_options.h"
#include "options/VNOption.h"

#include <utility>

namespace vornic {

UserSettings::UserSettings(std::unique_ptr<VNOption> options)
    : m_options(std::move(options))
    , m_areStored(!m_options)
{
}

UserSettings::~UserSettings() = default;

VNOption *UserSettings::options()
{
    if (!m_options)
        m_options = loadOptions();
    return m_options.get();
}

bool UserSettings::save() const
{
    return !m_areStored || !m_options || storeOptions(*m_options);
}

void UserSettings::restoreAudioDevice(AudioDeviceList &devices) const
{
    const qsizetype index = devices.titles().indexOf(start_settings::audioDevice());
    if (m_areStored && index >= 0)
        devices.setIndexOfSelected(index);
}

void UserSettings::rememberAudioDevice(const AudioDeviceList &devices) const
{
    if (m_areStored)
        start_settings::setAudioDevice(devices.stringValue());
}

} // namespace vornic
