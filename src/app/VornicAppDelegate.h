#pragma once

#include "app/logo_actions.h"
#include "app/session/audio_input.h"
#include "app/session/movie_job.h"
#include "app/session/recording.h"
#include "app/session/recording_session.h"
#include "observing/observable_object.h"
#include "overlay/VNRecorderWndCtrlDelegate.h"

#include <QColor>

namespace vornic {

/// The face of the program that the user interface and the delegates know: its properties and its operations.
///
/// Made by main, which owns it and the front end that it talks to; lives on the main thread. What it does is
/// done by the objects that it owns: the recording session, the logo's actions, the options. Operations that
/// only forward are described there.
class VornicAppDelegate : public ObservableObject, public VNRecorderWndCtrlDelegate
{
    Q_OBJECT
    Q_MOC_INCLUDE("options/VNOption.h")
    /// 0: idle; 1: recording, up to and including the encoding.
    Q_PROPERTY(int state READ state NOTIFY stateChanged)
    Q_PROPERTY(vornic::VNOption *options READ options CONSTANT)
    Q_PROPERTY(bool allowedEditOptions READ allowedEditOptions NOTIFY allowedEditOptionsChanged)
    Q_PROPERTY(
        bool allowedEditRecordRegion READ allowedEditRecordRegion NOTIFY allowedEditRecordRegionChanged)
    Q_PROPERTY(bool allowedEditLogo READ allowedEditLogo NOTIFY allowedEditLogoChanged)
    Q_PROPERTY(bool allowedEditFont READ allowedEditFont NOTIFY allowedEditFontChanged)
    Q_PROPERTY(bool allowedEditSound READ allowedEditSound NOTIFY allowedEditSoundChanged)
    Q_PROPERTY(bool allowedEditSystemLevel READ allowedEditSystemLevel NOTIFY allowedEditSystemLevelChanged)
    Q_PROPERTY(bool allowedEditStopAfter READ allowedEditStopAfter NOTIFY allowedEditStopAfterChanged)
    Q_PROPERTY(bool allowedAudioRecord READ allowedAudioRecord NOTIFY allowedAudioRecordChanged)

public:
    /// Without \a options they are the user's stored ones; given ones are neither read nor stored.
    explicit VornicAppDelegate(const FrontEnd &frontEnd, std::unique_ptr<VNOption> options = nullptr);
    ~VornicAppDelegate() override;

    /// Borrow for life, before applicationDidFinishLaunching(): the sound, without which there are no devices; the
    /// overlay, without which nothing is shown of region and logo; the path of the help document.
    void setAudioControl(AudioControl *control) { m_audioControl = control; }
    void setRecorderWndCtrl(VNRecorderWndCtrl *controller) { m_recorderWndCtrl = controller; }
    void setHelpDocument(const QString &path) { m_helpDocument = path; }
    /// Makes the session; before anything else is called but the above, options() and alertError().
    void applicationDidFinishLaunching();
    void terminate() { m_session->terminate(); }
    void leave() { m_session->leave(); }
    /// Stores the options, if they are the user's stored ones; false, and logged, where the disk does not take them.
    bool applicationWillTerminate() { return saveOptions(); }
    /// Writes the options to the user defaults, and those to disk. Called when the program terminates, and when the
    /// desktop's session ends: the desktop may end the program then without another word.
    bool saveOptions();

    // shell
    /// Null once when the stored options cannot be read; the next call makes fresh ones.
    [[nodiscard]] VNOption *options();
    [[nodiscard]] bool allowedEditOptions() const { return !isRecording(); }
    [[nodiscard]] bool allowedEditRecordRegion();
    [[nodiscard]] bool allowedEditLogo();
    [[nodiscard]] bool allowedEditFont();
    [[nodiscard]] bool allowedAudioRecord() const;
    /// Sound is switched on, and there is some to be recorded.
    [[nodiscard]] bool allowedEditSound();
    [[nodiscard]] bool allowedEditSystemLevel();
    [[nodiscard]] bool allowedEditStopAfter();
    void alertError(const QString &text);
    [[nodiscard]] bool windowShouldClose() { return m_session->mayQuit(); }
    [[nodiscard]] bool VNRecorderWndCtrlIsPaused(VNRecorderWndCtrl & /*controller*/) override
    {
        return isPaused();
    }
    /// The main window closes: the overlay goes with it.
    void windowWillClose();
    [[nodiscard]] bool VNRecorderWndCtrlIsRecording(VNRecorderWndCtrl & /*controller*/) override
    {
        return isRecording();
    }
    /// The choice between display and rectangle has changed: the overlay is placed, or hidden.
    void recordRegionChanged();
    /// The logo was switched on or off, or is another one.
    void logoChanged();
    /// The quality list's action.
    void setVideoQualiy(int index);
    void setFontAttrs() { m_logo->setFontAttrs(); }
    void changeFont(const QFont &font) { m_logo->changeFont(font); }
    void setFontFillColor(const QColor &color) { m_logo->setFontFillColor(color); }
    void setFontStrokeColor(const QColor &color) { m_logo->setFontStrokeColor(color); }
    void selImageFile() { m_logo->selImageFile(); }
    void setLogoImageFile(const QString &path) { m_logo->setLogoImageFile(path); }
    void setLogoImage(const QImage &picture) { m_logo->setLogoImage(picture); }
    void setLogoPicture(const Picture &picture) { m_logo->setLogoPicture(picture); }
    void makePictureOfLogoText() { m_logo->makePictureOfText(); }
    /// The grey of the titles of check boxes and radio buttons.
    [[nodiscard]] static QColor attributeForChkTitle();
    /// Opens a copy of the help document in the caches folder; without the document nothing happens.
    void helpScreenRecord();
    /// Whether the version \a version ("12", "12.4") of an operating system is above 10, or 10 and above 6 in
    /// its second number; false where it cannot be read.
    [[nodiscard]] static bool osOverLion(const QString &version);

    // recording session
    [[nodiscard]] bool isRecording() const { return m_session && m_session->isRecording(); }
    [[nodiscard]] int state() const { return isRecording() ? 1 : 0; }
    /// Neither a recording nor the questions before one.
    [[nodiscard]] bool isIdle() const
    {
        return m_session && m_session->phase() == RecordingSession::Phase::Idle;
    }
    /// Passes run: what is to be stopped.
    [[nodiscard]] bool isCapturing() const
    {
        return m_session && m_session->phase() == RecordingSession::Phase::Capturing;
    }
    /// The desktop is asked for its screen, which a stop gives up.
    [[nodiscard]] bool awaitsDisplay() const { return m_session && m_session->awaitsDisplay(); }
    [[nodiscard]] bool isPaused() const { return m_session && m_session->isPaused(); }
    [[nodiscard]] bool mayPause() const { return m_session && m_session->mayPause(); }
    /// Of the recording that runs, behind \a timestamp.
    [[nodiscard]] std::optional<std::int64_t> secondsLeft(qint64 timestamp) const
    {
        return m_session->recording().secondsLeft(timestamp);
    }
    void pauseOrResume() { m_session->pauseOrResume(); }
    void recorded() { m_session->recorded(); }
    void recordNow(const QString &file = {}) { m_session->recordNow(file); }
    void startRecordSelectOutFile() { m_session->startRecordSelectOutFile(); }
    void startRecorderWithHintWindow() { m_session->startRecorderWithHintWindow(); }
    void startRecorderAnyway() { m_session->startRecorderAnyway(); }
    void startRecorder(const QVariantList &arguments) { m_session->startRecorder(arguments); }
    void stopRecord() { m_session->stopRecord(); }
    void recover(const QString &id, const QString &file) { m_session->recover(id, file); }
    void later() { m_session->later(); }
    [[nodiscard]] QString leaveRecording() { return m_session->leaveRecording(); }
    void executeStopRecord() { m_session->executeStopRecord(); }
    void recordcomplete() { m_session->recordcomplete(); }
    void showStopRecordingBtn() { m_session->showStopRecordingBtn(); }
    void hideStopRecordingBtn() { m_session->hideStopRecordingBtn(); }
    void captureInBackground(double origin, const QRectF &rect, double frameRate)
    {
        m_session->captureLoop().run(origin, rect, frameRate);
    }
    [[nodiscard]] SerialQueue &imgCaptureQueue() { return m_session->imgCaptureQueue(); }
    [[nodiscard]] VNBufferMgr &bufferMgr() { return m_session->bufferMgr(); }
    [[nodiscard]] const QString &outfileName() const { return m_session->recording().path; }
    [[nodiscard]] RecordingCounts counts() const { return m_session->counts(); }
    [[nodiscard]] const QString &failure() const { return m_session->recording().failure; }
    [[nodiscard]] std::int64_t PKMuxerTaskLength() { return m_session->movieJob().PKMuxerTaskLength(); }
    [[nodiscard]] std::shared_ptr<const PKVideoFrame2> PKMuxerTaskGetVideoFrame()
    {
        return m_session->movieJob().PKMuxerTaskGetVideoFrame();
    }
    [[nodiscard]] std::shared_ptr<const PKAudioFrame2> PKMuxerTaskGetAudioFrame()
    {
        return m_session->movieJob().PKMuxerTaskGetAudioFrame();
    }

    // audio input
    [[nodiscard]] AudioDeviceList &audioDevicesView() { return audio().devices(); }
    [[nodiscard]] std::uint32_t currentAudioID() { return audio().currentAudioID(); }
    [[nodiscard]] AudioRecorder *audioRecorder() { return audio().audioRecorder(); }
    /// Of the user's choice, which is remembered.
    void selAudioDevice();
    void audioControlInputDeviceChanged(AudioControl &control)
    {
        audio().audioControlInputDeviceChanged(control);
    }
    void dataRecord(AudioRecorder &recorder,
                    const void *bytes,
                    std::uint32_t byteCount,
                    const AudioStreamBasicDescription &format)
    {
        audio().dataRecord(recorder, bytes, byteCount, format);
    }

signals:
    void stateChanged();
    void allowedEditOptionsChanged();
    void allowedEditRecordRegionChanged();
    void allowedEditLogoChanged();
    void allowedEditFontChanged();
    void allowedAudioRecordChanged();
    void allowedEditSoundChanged();
    void allowedEditSystemLevelChanged();
    void allowedEditStopAfterChanged();
    /// As the session's signals of these names.
    void pausedChanged();
    void clockTicked(qint64 timestamp);
    void recordingRefused();
    void readyToTerminate();

private:
    [[nodiscard]] AudioInput &audio() const { return m_session->audioInput(); }
    void adoptOverlay();
    void followSession();
    void restoreAudioDevice();
    void reloadOverlay();

    FrontEnd m_frontEnd;
    std::unique_ptr<VNOption> m_options;
    const bool m_optionsAreStored;
    QString m_helpDocument; ///< empty when there is none
    AudioControl *m_audioControl = nullptr;
    VNRecorderWndCtrl *m_recorderWndCtrl = nullptr;
    std::unique_ptr<LogoActions> m_logo;
    std::unique_ptr<RecordingSession> m_session; ///< null before the launch
};

} // namespace vornic
