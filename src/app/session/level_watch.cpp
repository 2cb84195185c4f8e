#include "app/session/level_watch.h"

#include "audio/AudioStreamBasicDescription.h"
#include "audio/audio_control.h"
#include "audio/audio_recorder.h"
#include "audio/sound_peak.h"
#include "base/exception_text.h"
#include "base/log.h"

#include <system_error>
#include <utility>

namespace vornic {

LevelWatch::LevelWatch(AudioControl *control)
    : m_control(control)
{
}

LevelWatch::~LevelWatch()
{
    close();
}

void LevelWatch::listenTo(const QString &name)
{
    if (!m_control || std::exchange(m_device, name) == name)
        return;
    const std::uint32_t deviceID = m_control->deviceIDFromName(name);
    const bool isMicrophone = !m_control->isMonitor(deviceID);
    m_queue.async([this, deviceID, isMicrophone] {
        m_recorder.reset();
        m_silence = {};
        m_isMicrophone = isMicrophone;
        if (deviceID != 0)
            open(deviceID);
    });
}

void LevelWatch::close()
{
    m_device.clear();
    m_queue.sync([this] { m_recorder.reset(); });
}

void LevelWatch::open(std::uint32_t deviceID)
{
    try {
        m_recorder = m_control->createRecorder(deviceID);
    } catch (const std::system_error &) { // no thread to be had
        logMessage(QStringLiteral("The level cannot be shown: %1").arg(textOfHandledException()));
        return;
    }
    m_recorder->setDelegate(this);
    if (!m_recorder->startRecordWithFormat(defaultAudioStreamBasicDescription()))
        m_recorder.reset();
}

void LevelWatch::dataRecord(AudioRecorder & /*recorder*/,
                            const void *bytes,
                            std::uint32_t byteCount,
                            const AudioStreamBasicDescription &format)
{
    const double peak = peakOf(bytes, byteCount, format);
    emit heard(peak);
    const double seconds = byteCount / (format.mBytesPerFrame * format.mSampleRate);
    if (!m_silence.isNoticed(peak, seconds) || !m_isMicrophone)
        return;
    QMetaObject::invokeMethod(this, [this] {
        if (!m_device.isEmpty() && std::exchange(m_toldOf, m_device) != m_device)
            emit nothingHeard(m_device);
    });
}

} // namespace vornic
