#pragma once

#include "app/session/capture_loop.h"
#include "app/session/front_end.h"
#include "app/session/recording_counts.h"
#include "app/session/recording_wishes.h"
#include "options/record_quality.h"

#include <QObject>
#include <QRectF>
#include <QString>
#include <QVariantList>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace vornic {

class AudioControl;
class AudioInput;
class DiskWatch;
class MovieJob;
class MovieMaker;
class PKMuxerContext;
class RecordingDeadline;
class RecordingStart;
class SerialQueue;
class VNBufferMgr;
class VNCGDisplay;
class VNOption;
struct Recording;

/// One recording at a time, from the record button to the finished movie.
///
/// Owned by the application delegate, or by the command line; lives on the main thread. RecordingStart asks what is to be
/// asked, this class runs the capture, and MovieMaker makes the movie. What one recording is and works with (Recording,
/// CaptureLoop, MovieJob) is made anew for each and never reset; the spool, the grabber, the sound and the capture queue
/// are there for all.
class RecordingSession : public QObject, private CaptureLoop::Listener
{
    Q_OBJECT
public:
    enum class Phase {
        Idle,
        Asking,    ///< questions stand between the record button and the recording
        Capturing, ///< passes run
        Writing,   ///< the movie is written
    };

    /// Borrows all for life. Without an \a audio control there is no sound.
    RecordingSession(const FrontEnd &frontEnd, VNOption &options, AudioControl *audio);
    ~RecordingSession() override;

    [[nodiscard]] Phase phase() const { return m_phase; }
    /// From the start of the capture until the movie is complete.
    [[nodiscard]] bool isRecording() const
    {
        return m_phase == Phase::Capturing || m_phase == Phase::Writing;
    }
    [[nodiscard]] bool isCapturing() const { return m_phase == Phase::Capturing; }
    /// Of the recordings that begin from now on.
    [[nodiscard]] RecordingWishes &wishes() { return m_wishes; }
    /// The one that runs or ran last.
    [[nodiscard]] const Recording &recording() const { return *m_recording; }

    /// The record button: begins the questions when idle.
    void recorded();
    /// Records without questions, when idle, but for those that a recording cannot do without: to \a file, which must
    /// not be there yet, or, when that is empty, to a new file of today's date and time among the user's movies.
    void recordNow(const QString &file = {});
    void startRecordSelectOutFile();
    void startRecorderWithHintWindow();
    void startRecorderAnyway();
    /// \a arguments: the output path, the quality step, 1 for audio or 0.
    void startRecorder(const QVariantList &arguments);
    /// Makes the movie of the recording \a id, which an earlier run has left or which was put off, when idle: to
    /// \a file, which it replaces, with another quality where one is given.
    void recover(const QString &id, const QString &file, std::optional<RecordQuality> quality = {});
    /// Puts off the movie that is written: the recording is kept, and recover() goes on with it.
    void later();
    /// Raises the exit flag; the next capture pass ends the recording. Where no picture is kept yet, because the screen
    /// is not clear or sound is waited for, it ends with the first one, and without sound; a second call does not wait.
    /// While the display is made ready that is given up.
    void stopRecord();
    /// Goes on only after the next call; what lies between is not in the movie. Nothing before the first picture.
    void pauseOrResume();
    [[nodiscard]] bool mayPause() const;
    [[nodiscard]] bool isPaused() const;
    /// The desktop is asked for its screen, and perhaps asks its user.
    [[nodiscard]] bool awaitsDisplay() const;
    /// Writes the movie of the recording that is captured; no more than once.
    void executeStopRecord();
    void recordcomplete();
    void showStopRecordingBtn();
    void hideStopRecordingBtn();
    /// Ends a running recording normally: its movie is written, then the phase is Idle. Then, or at once when
    /// idle, readyToTerminate() is sent. A second call while the movie is written puts that off.
    void terminate();
    /// The same, but the movie is put off: what is captured is kept, and recover() goes on with it.
    void leave();
    /// The process ends at once, and the recording that runs is kept: it is all on disk when this returns, and another
    /// process can open it. Its id; empty where there is none, or one without a picture, or one whose movie is whole.
    /// Nothing is called after this.
    [[nodiscard]] QString leaveRecording();
    /// True when the program may end; asks while a recording runs.
    [[nodiscard]] bool mayQuit();

    [[nodiscard]] AudioInput &audioInput() { return *m_audio; }
    [[nodiscard]] VNBufferMgr &bufferMgr() { return *m_spool; }
    [[nodiscard]] DiskWatch &diskWatch() { return *m_diskWatch; }
    [[nodiscard]] SerialQueue &imgCaptureQueue();
    [[nodiscard]] CaptureLoop &captureLoop() { return *m_loop; }
    [[nodiscard]] MovieJob &movieJob();
    /// Complete once the phase is Idle again.
    [[nodiscard]] RecordingCounts counts() const;
    /// The device list may be used only while idle, with sound switched on. After a recording it may be used until the
    /// next call, whatever is switched on.
    void enableAudioDevices();

signals:
    void stateChanged();
    /// isPaused() is another now.
    void pausedChanged();
    /// The timestamp of a kept frame, in PKTimebase ticks.
    void clockTicked(qint64 timestamp);
    /// The questions ended without a recording: the user thought better of it, or it cannot be made.
    void recordingRefused();
    void readyToTerminate();

private:
    void frameKept(std::int64_t timestamp) override;
    void soundAwaited() override;
    void soundMissing() override;
    void spoolFull() override;
    void captureEnded(const CaptureLoop &loop) override;

    void setPhase(Phase phase);
    [[nodiscard]] bool beginAsking();
    void refuse();
    [[nodiscard]] const VNCGDisplay &display();
    [[nodiscard]] QRectF regionToRecord() const;
    void describePicture(PKMuxerContext &context, RecordQuality quality) const;
    void adopt(std::shared_ptr<Recording> recording);
    [[nodiscard]] std::optional<double> askedLength() const;
    void limitLength();
    void beginCapture();
    void showClock(std::int64_t timestamp);
    void watchSize(std::int64_t timestamp);
    [[nodiscard]] bool awaitsOrigin() const;
    bool endWithFirstFrame();
    void goOnWithoutSound();
    void soundIsLost(bool isLost);
    void oneSoundIsLost(const QString &name, bool isLost);
    void followSound();
    void becomeIdle();

    FrontEnd m_frontEnd;
    VNOption &m_options;
    Phase m_phase = Phase::Idle;
    bool m_terminating = false;
    RecordingWishes m_wishes;
    std::unique_ptr<VNBufferMgr> m_spool;
    std::unique_ptr<DiskWatch> m_diskWatch;
    std::unique_ptr<VNCGDisplay> m_display; ///< on the capture queue; null before the first pass
    std::unique_ptr<AudioInput> m_audio;
    std::unique_ptr<RecordingStart> m_start;
    std::unique_ptr<MovieMaker> m_maker;
    std::shared_ptr<Recording> m_recording; ///< the one that runs or ran last; never null, nor is the loop
    std::unique_ptr<RecordingDeadline> m_deadline; ///< null where the recording has no length
    std::shared_ptr<CaptureLoop> m_loop;
    std::unique_ptr<SerialQueue> m_captureQueue; ///< last: its thread ends before what it uses
};

} // namespace vornic
