#include "app/session/audio_input.h"

#include "app/session/audio_device_list.h"
#include "app/session/recording.h"
#include "audio/PKAudioRecorderData.h"
#include "audio/audio_control.h"
#include "audio/audio_recorder.h"
#include "audio/mixed_recorder.h"
#include "audio/sound_peak.h"
#include "base/exception_text.h"
#include "base/log.h"
#include "base/main_queue.h"
#include "capture/spool/VNBufferMgr.h"
#include "codec/PKMuxerContext.h"

#include <system_error>
#include <utility>
#include <vector>

namespace vornic {

AudioInput::AudioInput(VNBufferMgr &spool, AudioControl *control)
    : m_spool(spool)
    , m_control(control)
    , m_devices(std::make_unique<AudioDeviceList>())
{
    if (!m_control)
        return;
    addDevices(m_control->inputDevicesName());
    m_control->setDelegate(this);
}

AudioInput::~AudioInput()
{
    m_gone.request_stop();
    stop(); // before what the recorder's thread works with is gone
    if (m_control)
        m_control->setDelegate(nullptr);
}

void AudioInput::addDevices(const QStringList &names)
{
    for (const QString &name : names)
        m_devices->addMenuItem(name);
    if (!names.isEmpty())
        m_devices->setIndexOfSelected(0);
}

bool AudioInput::hasDevices() const
{
    return m_control && !m_control->inputDevicesName().isEmpty();
}

/// The list keeps what it has shown: a device that comes back is found under its old name.
void AudioInput::audioControlInputDeviceChanged(AudioControl &control)
{
    const QStringList names = control.inputDevicesName();
    control.setDelegate(this);
    addDevices(names);
    emit devicesChanged();
}

std::uint32_t AudioInput::currentAudioID()
{
    return m_control ? m_control->deviceIDFromName(m_devices->stringValue()) : 0;
}

AudioRecorder *AudioInput::audioRecorder()
{
    if (!m_recorder && m_control) {
        try {
            m_recorder = m_control->createRecorder(currentAudioID());
            m_recorder->setDelegate(this);
        } catch (const std::system_error &) { // no thread to be had
            logMessage(QStringLiteral("The sound cannot be recorded: %1").arg(textOfHandledException()));
        }
    }
    return m_recorder.get();
}

void AudioInput::selAudioDevice()
{
    if (AudioRecorder *recorder = audioRecorder())
        recorder->setDeviceID(currentAudioID());
    if (m_mixed)
        m_mixed->setDeviceID(currentAudioID());
}

/// Made at the first call; null without a control.
MixedRecorder *AudioInput::mixedRecorder()
{
    if (!m_mixed && m_control) {
        try {
            std::vector<std::unique_ptr<AudioRecorder>> recorders;
            recorders.push_back(m_control->createRecorder(currentAudioID()));
            recorders.push_back(m_control->createRecorder(AudioControl::systemSoundID));
            m_mixed = std::make_unique<MixedRecorder>(std::move(recorders));
            m_mixed->setDelegate(this);
        } catch (const std::system_error &) { // no thread to be had
            logMessage(QStringLiteral("The sound cannot be mixed: %1").arg(textOfHandledException()));
        }
    }
    return m_mixed.get();
}

/// One input as it is goes no further way than it has to. What the system plays is not recorded twice.
AudioRecorder *AudioInput::recorderOfChoice()
{
    if (m_choice.input && m_choice.system && m_control && m_control->isSystemSound(currentAudioID()))
        m_choice.system = false;
    MixedRecorder *mixed = m_choice.isPlain() ? nullptr : mixedRecorder();
    if (!mixed)
        return audioRecorder();
    setPartsOf(*mixed);
    return mixed;
}

void AudioInput::setPartsOf(MixedRecorder &mixed)
{
    const auto teller = [this](const QString &name) {
        return
            [this, name](bool isLost) { tell([this, name, isLost] { emit oneSoundIsLost(name, isLost); }); };
    };
    const QStringList names = soundNames();
    MixedRecorder::Part input { m_choice.input, m_choice.inputPercent / 100.0 };
    input.heard = [this](double peak, double seconds) { inputHeard(peak, seconds); };
    input.lost = teller(names[0]);
    MixedRecorder::Part system { m_choice.system, m_choice.systemPercent / 100.0 };
    system.lost = teller(names[1]);
    mixed.setParts({ input, system },
                   isSeparate() ? MixedRecorder::Layout::SideBySide : MixedRecorder::Layout::Mixed);
}

/// Of the input, and of what the system plays.
QStringList AudioInput::soundNames() const
{
    return { m_devices->stringValue(), tr("What the system plays") };
}

void AudioInput::adopt(std::shared_ptr<Recording> recording)
{
    m_startedRecorder = nullptr;
    const std::lock_guard lock(m_mutex);
    m_recording = std::move(recording);
}

std::shared_ptr<Recording> AudioInput::recording() const
{
    const std::lock_guard lock(m_mutex);
    return m_recording;
}

void AudioInput::start(PKMuxerContext &context)
{
    const bool isMicrophone = m_choice.input && m_control && !m_control->isMonitor(currentAudioID());
    m_microphone = isMicrophone ? m_devices->stringValue() : QString();
    m_silence = {};
    AudioRecorder *recorder = recorderOfChoice();
    if (!recorder || !recorder->startRecordWithFormat(defaultAudioStreamBasicDescription())) {
        logMessage(QStringLiteral("Can support 16bit, 8bit record."));
        return;
    }
    const AudioStreamBasicDescription format = recorder->currentDataFormat();
    if (format.mBitsPerChannel != 8 && format.mBitsPerChannel != 16) {
        logMessage(QStringLiteral("Only support 16bit & 8bit : %1").arg(format.mBitsPerChannel));
        recorder->stopRecord();
        context.setAudioCodecID(PKMuxerContext::audioCodecNone);
        recording()->clock.dropSound();
        return;
    }
    m_startedRecorder = recorder;
    context.setAudioCodecID(PKMuxerContext::audioCodecAac);
    context.setSamplerate(static_cast<std::int32_t>(format.mSampleRate));
    context.setNumberOfChannels(static_cast<std::int32_t>(format.mChannelsPerFrame));
    if (isSeparate() && recorder == m_mixed.get())
        context.setAudioTracks(soundNames());
    context.setSampleFormat(format.mBitsPerChannel == 16 ? PKMuxerContext::sampleFormatSigned16
                                                         : PKMuxerContext::sampleFormatUnsigned8);
}

void AudioInput::stop()
{
    if (m_recorder)
        m_recorder->stopRecord();
    if (m_mixed)
        m_mixed->stopRecord();
}

void AudioInput::endCapture()
{
    if (AudioRecorder *recorder = m_startedRecorder)
        recorder->stopRecord();
}

/// On the thread of the chunks.
void AudioInput::inputHeard(double peak, double seconds)
{
    if (m_silence.isNoticed(peak, seconds) && !m_microphone.isEmpty())
        tell([this, name = m_microphone] { emit nothingHeard(name); });
}

void AudioInput::dataRecord(AudioRecorder &recorder,
                            const void *bytes,
                            std::uint32_t byteCount,
                            const AudioStreamBasicDescription &format)
{
    if (m_spool.exit()) {
        m_spool.endAudioRecord();
        return;
    }
    const double seconds = byteCount / (format.mBytesPerFrame * format.mSampleRate);
    const double peak = peakOf(bytes, byteCount, format);
    if (&recorder == m_recorder.get())
        inputHeard(peak, seconds);
    tell([this, peak] { emit levelHeard(peak); });
    const QByteArray chunk(static_cast<const char *>(bytes), static_cast<qsizetype>(byteCount));
    const std::shared_ptr<Recording> adopted = recording();
    if (!adopted) {
        m_spool.pushAudioBuffer(PKAudioRecorderData(chunk, format));
        return;
    }
    adopted->clock.soundBegins(adopted->clock.now() - seconds);
    for (const QByteArray &part : adopted->recordedSound.partsOf(chunk, format))
        m_spool.pushAudioBuffer(PKAudioRecorderData(part, format));
}

void AudioInput::soundWasLost(AudioRecorder & /*recorder*/)
{
    tellOfLoss(true);
}

void AudioInput::soundCameBack(AudioRecorder & /*recorder*/)
{
    tellOfLoss(false);
}

void AudioInput::tellOfLoss(bool isLost)
{
    tell([this, isLost] { emit soundIsLost(isLost); });
}

/// On the main thread, unless another recording has begun by then.
void AudioInput::tell(const std::function<void()> &what)
{
    main_queue::async([this, what, told = recording(), gone = m_gone.get_token()] {
        if (!gone.stop_requested() && told && told == recording())
            what();
    });
}

} // namespace vornic
