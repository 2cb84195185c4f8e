#pragma once

#include "app/session/recording_counts.h"
#include "audio/PKAudioControlDelegate.h"
#include "audio/PKAudioRecorderDelegate.h"
#include "codec/PKMuxerTaskDataSource.h"
#include "observing/observable_object.h"
#include "overlay/VNRecorderWndCtrlDelegate.h"

#include <QColor>
#include <QFont>
#include <QRectF>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <stop_token>

namespace vornic {

class AudioControl;
class AudioDeviceList;
class AudioRecorder;
class BitmapImage;
class FrameComposer;
class FrontEnd;
class PKMuxerContext;
class SerialQueue;
class VNBufferMgr;
class VNCGDisplay;
class VNLogoContext;
class VNOption;
class VNRecorderWndCtrl;
struct AudioStreamBasicDescription;

/// The spine of the program: one recording at a time, from the record button to the finished movie.
///
/// Made by main, which owns it and the front end that it talks to; lives on the main thread. The capture
/// passes run on imgCaptureQueue, the PKMuxerTask… functions on the encoder's threads, dataRecord() on the
/// audio recorder's thread.
class VornicAppDelegate : public ObservableObject,
                          public PKMuxerTaskDataSource,
                          public PKAudioControlDelegate,
                          public PKAudioRecorderDelegate,
                          public VNRecorderWndCtrlDelegate
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
    Q_PROPERTY(bool allowedAudioRecord READ allowedAudioRecord NOTIFY allowedAudioRecordChanged)

public:
    /// Borrows \a frontEnd for life. The options are the user's stored ones.
    explicit VornicAppDelegate(FrontEnd &frontEnd);
    /// The options are \a options; the stored ones are neither read nor written.
    VornicAppDelegate(FrontEnd &frontEnd, std::unique_ptr<VNOption> options);
    ~VornicAppDelegate() override;

    /// Makes the spool manager and the grabber; before anything else is called.
    void applicationDidFinishLaunching();
    /// Ends a running recording normally: its movie is written, then state is 0. Then, or at once when idle,
    /// readyToTerminate() is sent.
    void terminate();
    /// Stores the options, if they are the user's stored ones.
    void applicationWillTerminate();

    // shell
    /// Null once when the stored options cannot be read; the next call makes fresh ones.
    [[nodiscard]] VNOption *options();
    [[nodiscard]] bool allowedEditOptions() const;
    [[nodiscard]] bool allowedEditRecordRegion();
    [[nodiscard]] bool allowedEditLogo();
    [[nodiscard]] bool allowedEditFont();
    [[nodiscard]] bool allowedAudioRecord() const;
    void alertError(const QString &text);
    /// True when the main window may close; asks while a recording runs.
    [[nodiscard]] bool windowShouldClose();
    /// Borrows the overlay, until the delegate ends; without one nothing is shown of region and logo. Before
    /// applicationDidFinishLaunching().
    void setRecorderWndCtrl(VNRecorderWndCtrl *controller) { m_recorderWndCtrl = controller; }
    [[nodiscard]] bool VNRecorderWndCtrlIsRecording(VNRecorderWndCtrl & /*controller*/) override
    {
        return m_state == 1;
    }
    /// The choice between display and rectangle has changed: the overlay is placed, or hidden.
    void recordRegionChanged();
    /// The logo was switched on or off, or is another one.
    void logoChanged();
    /// The quality list's action.
    void setVideoQualiy(int index);
    /// Opens the font panel with the logo's font.
    void setFontAttrs();
    /// The font panel's choice becomes the logo's font, and its only attribute.
    void changeFont(const QFont &font);
    void setFontFillColor(const QColor &color);
    void setFontStrokeColor(const QColor &color);
    /// Asks for a file with the logo's picture.
    void selImageFile();
    /// The picture of the logo, from a file; what cannot be read is told, and the old one stays.
    void setLogoImageFile(const QString &path);
    void setLogoImage(const QImage &picture);
    /// The grey of the titles of check boxes and radio buttons.
    [[nodiscard]] static QColor attributeForChkTitle();
    /// The path of the help document; there is none until it is set.
    void setHelpDocument(const QString &path) { m_helpDocument = path; }
    /// Opens a copy of the help document in the caches folder, made at the first time; without the document
    /// nothing happens.
    void helpScreenRecord();
    /// Whether the version \a version ("12", "12.4") of an operating system is above 10, or 10 and above 6 in
    /// its second number; false where it cannot be read.
    [[nodiscard]] static bool osOverLion(const QString &version);
    /// Writes the options to the user defaults, and those to disk.
    void saveOptions();
    /// The main window closes: the overlay goes with it.
    void windowWillClose();

    // recording session
    [[nodiscard]] int state() const { return m_state; }
    /// The record button: begins the start sequence when idle.
    void recorded();
    void startRecordSelectOutFile();
    void startRecorderWithHintWindow();
    void startRecorderAnyway();
    /// Raises the exit flag; the next capture pass ends the recording. From any thread.
    void stopRecord();
    /// Writes the movie of the recording that runs; no more than once.
    void executeStopRecord();
    void recordcomplete();
    void showStopRecordingBtn();
    void hideStopRecordingBtn();
    /// One pass, on the capture queue: \a origin in seconds of the absolute clock, a null \a rect for the
    /// full display, \a frameRate in frames a second.
    void captureInBackground(double origin, const QRectF &rect, double frameRate);
    [[nodiscard]] SerialQueue &imgCaptureQueue();
    [[nodiscard]] VNBufferMgr &bufferMgr() { return *mBufferMgr; }
    [[nodiscard]] const QString &outfileName() const { return m_outfileName; }
    /// Of the recording that runs or ran last; complete once state is 0 again.
    [[nodiscard]] RecordingCounts counts() const;
    /// Empty when the last recording became a movie, else why it did not.
    [[nodiscard]] const QString &failure() const { return m_failure; }

    // encoder hand-off
    /// \a arguments: the output path, the quality step, 1 for audio or 0.
    void startRecorder(const QVariantList &arguments);
    [[nodiscard]] std::int64_t PKMuxerTaskLength() override;
    [[nodiscard]] std::shared_ptr<const PKVideoFrame2> PKMuxerTaskGetVideoFrame() override;
    [[nodiscard]] std::shared_ptr<const PKAudioFrame2> PKMuxerTaskGetAudioFrame() override;

    // audio input
    /// Borrows \a control for life; without one there are no devices. Before applicationDidFinishLaunching().
    void setAudioControl(AudioControl *control) { m_audioControl = control; }
    [[nodiscard]] AudioDeviceList &audioDevicesView() { return *mAudioDevicesView; }
    /// The number of the device that the list shows; 0 when it is not there.
    [[nodiscard]] std::uint32_t currentAudioID();
    /// Made at the first call; null without a control.
    [[nodiscard]] AudioRecorder *audioRecorder();
    /// The list's action: the user has chosen a device.
    void selAudioDevice();
    void audioControlInputDeviceChanged(AudioControl &control) override;
    void dataRecord(AudioRecorder &recorder,
                    const void *bytes,
                    std::uint32_t byteCount,
                    const AudioStreamBasicDescription &format) override;

signals:
    void stateChanged();
    void allowedEditOptionsChanged();
    void allowedEditRecordRegionChanged();
    void allowedEditLogoChanged();
    void allowedEditFontChanged();
    void allowedAudioRecordChanged();
    /// The timestamp of a kept frame, in PKTimebase ticks; on the main thread.
    void clockTicked(qint64 timestamp);
    /// The start sequence ended without a recording: the user thought better of it, or it cannot be made.
    void recordingRefused();
    void readyToTerminate();

private:
    void setState(int state);
    [[nodiscard]] bool outputAndSpoolAreReady();
    [[nodiscard]] QRectF regionToRecord();
    void stopBecauseFull();
    void endCapture();
    [[nodiscard]] bool keepFrame(std::shared_ptr<const BitmapImage> image, double origin);
    void tellOfAudioWait();
    [[nodiscard]] std::chrono::nanoseconds overlayWait() const;
    void scheduleCapture(std::chrono::nanoseconds delay, double origin, const QRectF &rect, double frameRate);
    void adoptOverlay();
    void reloadOverlay();
    void fillAudioDevices();
    void addAudioDevices(const QStringList &names);
    void enableAudioDevices();
    void configureAudio(PKMuxerContext &context);
    void muxerReported(const QString &action, const QVariant &value);
    void startMuxing();
    void muxerFailed(const QString &sentence);
    void recordFailed(const QString &sentence);
    void becomeIdle();

    FrontEnd &m_frontEnd;
    std::unique_ptr<VNOption> m_options;
    const bool m_optionsAreStored;
    int m_state = 0;
    bool m_stopItemShown = false;
    bool m_muxing = false;
    bool m_terminating = false;
    QString m_outfileName;
    QString m_failure;
    QString m_helpDocument; ///< empty when there is none
    std::unique_ptr<VNBufferMgr> mBufferMgr;
    std::unique_ptr<VNCGDisplay> mDisplay;
    AudioControl *m_audioControl = nullptr;
    VNRecorderWndCtrl *m_recorderWndCtrl = nullptr;
    std::unique_ptr<AudioDeviceList> mAudioDevicesView;
    std::unique_ptr<AudioRecorder> _audioRecorder;
    /// That one, once it has started: what the capture queue stops. Null where the recording has no sound.
    std::atomic<AudioRecorder *> m_startedRecorder = nullptr;
    std::unique_ptr<FrameComposer> m_composer; ///< on the encoder's thread while a movie is written
    VNLogoContext *m_logoContext = nullptr;    ///< the options', borrowed while a movie is written

    bool m_recordsAudio = false; ///< the options' enableAudio when the recording started
    std::atomic<bool> _audioValidate = false;
    int m_audioWaits = 0;                      ///< passes that found no time origin, on the capture queue
    std::atomic<double> _audioStartTime = 0.0; ///< seconds of the absolute clock; 0: no chunk yet
    std::atomic<std::uint64_t> m_framesGrabbed = 0;
    std::atomic<std::uint64_t> m_framesUnusable = 0;
    std::uint64_t m_framesWritten = 0;
    std::uint64_t m_framesOutOfOrder = 0;
    double m_movieSeconds = 0;
    double m_audioSeconds = 0;

    std::stop_source m_ending; ///< stopped as the delegate ends: the capture queue no longer waits for main
    std::unique_ptr<SerialQueue> _imgCaptureQueue; ///< last: its thread ends before what it uses
};

} // namespace vornic
