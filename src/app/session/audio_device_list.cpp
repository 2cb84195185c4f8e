#include "app/session/audio_device_list.h"

namespace vornic {

void AudioDeviceList::addMenuItem(const QString &title)
{
    m_titles += title;
    emit changed();
}

void AudioDeviceList::setIndexOfSelected(qsizetype index)
{
    m_indexOfSelected = index;
    emit changed();
}

void AudioDeviceList::setEnabled(bool enabled)
{
    m_enabled = enabled;
    emit changed();
}

} // namespace vornic
