#pragma once

#include "app/allowed_edits.h"
#include "app/logo_actions.h"
#include "app/overlay_actions.h"
#include "app/session/audio_input.h"
#include "app/session/movie_job.h"
#include "app/session/recording.h"
#include "app/session/recording_questions.h"
#include "app/session/recording_session.h"
#include "app/system_version.h"
#include "app/user_settings.h"
#include "observing/observable_object.h"
#include "options/VNOption.h"
#include "overlay/VNRecorderWndCtrlDelegate.h"

#include <QColor>

namespace vornic {

/// The face of the program that the user interface and the delegates know: its properties and its operations.
///
/// Made by main, which owns it and the front end that it talks to; lives on the main thread. What it does is
/// done by the objects that it owns, and operations that only forward are described there.
class VornicAppDelegate : public ObservableObject, public VNRecorderWndCtrlDelegate
{
    Q_OBJECT
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

    /// Borrow for life, before applicationDidFinishLaunching(): the sound, without which there are no devices; the
    /// overlay, without which nothing is shown of region and logo; the path of the help document.
    void setAudioControl(AudioControl *control) { m_audioControl = control; }
    void setRecorderWndCtrl(VNRecorderWndCtrl *controller) { m_overlay.setController(controller); }
    void setHelpDocument(const QString &path) { m_helpDocument = path; }
    /// Makes the session; before anything else is called but the above, options() and alertError().
    void applicationDidFinishLaunching();
    /// After the launch.
    [[nodiscard]] RecordingSession &session() const { return *m_session; }
    /// Stores the options when the program terminates, and when the desktop's session ends: the desktop may end the
    /// program then without another word.
    bool applicationWillTerminate() { return m_settings.save(); }

    // shell
    [[nodiscard]] VNOption *options() { return m_settings.options(); }
    [[nodiscard]] bool allowedEditOptions() const { return !isRecording(); }
    [[nodiscard]] bool allowedEditRecordRegion() { return allowedEdits().recordRegion(); }
    [[nodiscard]] bool allowedEditLogo() { return allowedEdits().logo(); }
    [[nodiscard]] bool allowedEditFont() { return allowedEdits().font(); }
    [[nodiscard]] bool allowedAudioRecord() { return allowedEdits().audioRecord(); }
    [[nodiscard]] bool allowedEditSound() { return allowedEdits().sound(); }
    [[nodiscard]] bool allowedEditSystemLevel() { return allowedEdits().systemLevel(); }
    [[nodiscard]] bool allowedEditStopAfter() { return allowedEdits().stopAfter(); }
    void alertError(const QString &text) { m_frontEnd.questions.alertError(text); }
    [[nodiscard]] bool windowShouldClose() { return m_session->mayQuit(); }
    [[nodiscard]] bool VNRecorderWndCtrlIsPaused(VNRecorderWndCtrl &) override { return isPaused(); }
    /// The main window closes: the overlay goes with it.
    void windowWillClose() { m_overlay.orderOut(); }
    [[nodiscard]] bool VNRecorderWndCtrlIsRecording(VNRecorderWndCtrl &) override { return isRecording(); }
    /// The choice between display and rectangle has changed: the overlay is placed, or hidden.
    void recordRegionChanged();
    /// The logo was switched on or off.
    void logoChanged() { m_overlay.place(); }
    /// The quality list's action.
    void setVideoQualiy(int index) { options()->setRecordQuality(index); }
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
    [[nodiscard]] static QColor attributeForChkTitle() { return QColor::fromRgbF(grey, grey, grey); }
    /// Opens a copy of the help document in the caches folder; without the document nothing happens.
    void helpScreenRecord();
    [[nodiscard]] static bool osOverLion(const QString &version) { return isVersionAbove(version, 10, 6); }

    // recording session
    [[nodiscard]] bool isRecording() const { return m_session && m_session->isRecording(); }
    [[nodiscard]] bool isPaused() const { return m_session && m_session->isPaused(); }
    [[nodiscard]] int state() const { return isRecording() ? 1 : 0; }
    void recorded() { m_session->recorded(); }
    void startRecordSelectOutFile() { m_session->startRecordSelectOutFile(); }
    void startRecorderWithHintWindow() { m_session->startRecorderWithHintWindow(); }
    void startRecorderAnyway() { m_session->startRecorderAnyway(); }
    void startRecorder(const QVariantList &arguments) { m_session->startRecorder(arguments); }
    void stopRecord() { m_session->stopRecord(); }
    void executeStopRecord() { m_session->executeStopRecord(); }
    void recordcomplete() { m_session->recordcomplete(); }
    void showStopRecordingBtn() { m_session->showStopRecordingBtn(); }
    void hideStopRecordingBtn() { m_session->hideStopRecordingBtn(); }
    void captureInBackground(double origin, const QRectF &rect, double rate)
    {
        m_session->captureLoop().run(origin, rect, rate);
    }
    [[nodiscard]] SerialQueue &imgCaptureQueue() { return m_session->imgCaptureQueue(); }
    [[nodiscard]] VNBufferMgr &bufferMgr() { return m_session->bufferMgr(); }
    [[nodiscard]] const QString &outfileName() const { return m_session->recording().path; }
    [[nodiscard]] RecordingCounts counts() const { return m_session->counts(); }
    [[nodiscard]] const QString &failure() const { return m_session->recording().failure; }
    [[nodiscard]] auto PKMuxerTaskLength() { return m_session->movieJob().PKMuxerTaskLength(); }
    [[nodiscard]] auto PKMuxerTaskGetVideoFrame() { return m_session->movieJob().PKMuxerTaskGetVideoFrame(); }
    [[nodiscard]] auto PKMuxerTaskGetAudioFrame() { return m_session->movieJob().PKMuxerTaskGetAudioFrame(); }

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

private:
    static constexpr float grey = 0.615686297416687F;

    [[nodiscard]] AudioInput &audio() const { return m_session->audioInput(); }
    [[nodiscard]] AllowedEdits allowedEdits();
    void followSession();

    FrontEnd m_frontEnd;
    UserSettings m_settings;
    QString m_helpDocument; ///< empty when there is none
    AudioControl *m_audioControl = nullptr;
    std::unique_ptr<LogoActions> m_logo;
    std::unique_ptr<RecordingSession> m_session; ///< null before the launch
    OverlayActions m_overlay;                    ///< last: while it is there, it asks this object
};

} // namespace vornic
