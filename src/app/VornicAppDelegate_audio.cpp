// Audio input: the devices, the recording's time origin, and the chunks on their way into the spool.

#include "app/VornicAppDelegate.h"
#include "app/session/audio_device_list.h"
#include "audio/PKAudioRecorderData.h"
#include "audio/audio_control.h"
#include "audio/audio_recorder.h"
#include "base/clock.h"
#include "capture/spool/VNBufferMgr.h"
#include "options/VNOption.h"

#include <cmath>

namespace vornic {

void VornicAppDelegate::fillAudioDevices()
{
    QStringList names;
    if (m_audioControl) {
        names = m_audioControl->inputDevicesName();
        m_audioControl->setDelegate(this);
    }
    addAudioDevices(names);
    if (names.isEmpty())
        options()->setEnableAudio(false);
    enableAudioDevices();
    connect(options(), &VNOption::enableAudioChanged, this, &VornicAppDelegate::enableAudioDevices);
}

void VornicAppDelegate::addAudioDevices(const QStringList &names)
{
    for (const QString &name : names)
        mAudioDevicesView->addMenuItem(name);
    if (!names.isEmpty())
        mAudioDevicesView->setIndexOfSelected(0);
}

void VornicAppDelegate::enableAudioDevices()
{
    mAudioDevicesView->setEnabled(options()->enableAudio() && allowedAudioRecord());
}

/// The list keeps what it has shown: a device that comes back is found under its old name.
void VornicAppDelegate::audioControlInputDeviceChanged(AudioControl &control)
{
    const QStringList names = control.inputDevicesName();
    control.setDelegate(this);
    notifyChanged({ "allowedAudioRecord" });
    if (!names.isEmpty())
        addAudioDevices(names);
    enableAudioDevices();
}

std::uint32_t VornicAppDelegate::currentAudioID()
{
    return m_audioControl ? m_audioControl->deviceIDFromName(mAudioDevicesView->stringValue()) : 0;
}

AudioRecorder *VornicAppDelegate::audioRecorder()
{
    if (!_audioRecorder && m_audioControl) {
        _audioRecorder = m_audioControl->createRecorder(currentAudioID());
        _audioRecorder->setDelegate(this);
    }
    return _audioRecorder.get();
}

void VornicAppDelegate::selAudioDevice()
{
    if (AudioRecorder *recorder = audioRecorder())
        recorder->setDeviceID(currentAudioID());
}

void VornicAppDelegate::dataRecord(AudioRecorder & /*recorder*/,
                                   const void *bytes,
                                   std::uint32_t byteCount,
                                   const AudioStreamBasicDescription &format)
{
    if (mBufferMgr->exit()) {
        mBufferMgr->endAudioRecord();
        return;
    }
    constexpr double unsetOrigin = 0.001;
    if (std::abs(_audioStartTime.load()) < unsetOrigin)
        _audioStartTime = absoluteTimeSeconds() - byteCount / (format.mBytesPerFrame * format.mSampleRate);
    mBufferMgr->pushAudioBuffer(PKAudioRecorderData(
        QByteArray(static_cast<const char *>(bytes), static_cast<qsizetype>(byteCount)), format));
}

} // namespace vornic
