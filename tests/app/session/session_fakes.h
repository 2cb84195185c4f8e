#pragma once

#include "app/session/audio_device_list.h"
#include "app/session/desktop_services.h"
#include "app/session/front_end.h"
#include "app/session/logo_panels.h"
#include "app/session/movie_progress.h"
#include "app/session/program_windows.h"
#include "app/session/recording_progress.h"
#include "app/session/recording_questions.h"
#include "app/session/recording_room.h"
#include "app/session/sound_notices.h"
#include "audio/PKAudioControlDelegate.h"
#include "audio/PKAudioRecorderDelegate.h"
#include "audio/audio_control.h"
#include "audio/audio_recorder.h"
#include "options/VNLogoContext.h"
#include "options/VNOption.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace vornic {

/// Answers as a test wants and writes down what it was told.
class FakeFrontEnd : public RecordingQuestions,
                     public RecordingProgress,
                     public SoundNotices,
                     public MovieProgress,
                     public ProgramWindows,
                     public DesktopServices,
                     public LogoPanels
{
public:
    virtual ~FakeFrontEnd() = default;
    [[nodiscard]] FrontEnd frontEnd() { return { *this, *this, *this, *this, *this, *this, *this }; }

    bool goesOn = true;
    std::optional<QString> path;
    int hintResponse = responseContinue;
    bool quits = true;
    bool recordsWithoutSound = true;
    bool countsToTheEnd = true;
    bool holdsScreen = false;               ///< the screen is clear only when screenIsClear is called
    std::function<void()> screenIsClear;    ///< set while it is held
    std::function<void()> goOnWithoutSound; ///< set once sound was told to be missing
    std::optional<QString> otherPath;
    std::function<void()> onAlert;
    std::function<void()> onProgress;
    std::function<void()> onShown; ///< the movie, or its folder

    QStringList told; ///< every call, in order
    double announcedSeconds = 0;
    QString announcedFlaws;
    QStringList titles;              ///< of the stop item
    QList<std::int64_t> secondsLeft; ///< told before each title
    QList<bool> pauses;              ///< paused, and going on
    QStringList kept;                ///< the ids of recordings
    QStringList alerts;              ///< message and informative text
    QList<double> percents;
    QList<double> levels;  ///< of the sound that is recorded
    QRectF recordedRegion; ///< that the stop item was told of
    QList<RecordingRoom> rooms;
    QList<RecordingRoom> warnings; ///< of little room

    void askAboutFreeSpace(std::function<void(bool)> answer) override
    {
        told += "freeSpace";
        answer(goesOn);
    }
    void runSavePanel(const QString &name,
                      const QString &type,
                      std::function<void(std::optional<QString>)> answer) override
    {
        told += "savePanel " + name + "." + type;
        answer(path);
    }
    void askToRecordWithoutSound(std::function<void(bool)> answer) override
    {
        told += "withoutSound";
        answer(recordsWithoutSound);
    }
    void countDown(std::function<void(bool)> answer) override
    {
        told += "countDown";
        answer(countsToTheEnd);
    }
    void displayDeclined() override { told += "declined"; }
    void showLevel(double peak) override { levels += peak; }
    void nothingIsHeard(const QString &name) override { told += "nothingIsHeard " + name; }
    void soundIsMissing(const std::function<void()> &goOn) override
    {
        told += "soundIsMissing";
        goOnWithoutSound = goOn;
    }
    void soundIsLost(bool isLost) override { told += isLost ? "soundIsLost" : "soundIsBack"; }
    void sizeIsReached() override { told += "sizeIsReached"; }
    void movieIsWrittenAgain() override { told += "movieIsWrittenAgain"; }
    void oneSoundIsLost(const QString &name, bool isLost) override
    {
        told += name + (isLost ? " is lost" : " is back");
    }
    void whenScreenIsClear(std::function<void()> done) override
    {
        if (holdsScreen)
            screenIsClear = std::move(done);
        else
            done();
    }
    void stepAside() override { told += "stepAside"; }
    void showHint(std::function<void(int)> answer) override
    {
        told += "hint";
        answer(hintResponse);
    }
    void showStopItem(const QString &title, const QRectF &recorded) override
    {
        told += "showStopItem";
        recordedRegion = recorded;
        titles += title;
    }
    void setStopItemTitle(const QString &title) override { titles += title; }
    void showTimeLeft(std::int64_t seconds) override { secondsLeft += seconds; }
    void showPaused(bool isPaused) override { pauses += isPaused; }
    void hideStopItem() override { told += "hideStopItem"; }
    void showRoom(const RecordingRoom &room) override { rooms += room; }
    void warnOfLittleRoom(const RecordingRoom &room) override { warnings += room; }
    void minimiseMainWindow() override { told += "minimise"; }
    void bringMainWindowToFront() override { told += "toFront"; }
    void reloadData() override { told += "reloadData"; }
    void setBusy(bool busy) override { told += busy ? "busy" : "notBusy"; }
    void askForOtherFile(const QString &type, std::function<void(std::optional<QString>)> answer) override
    {
        told += "otherFile " + type;
        answer(std::exchange(otherPath, std::nullopt));
    }
    void beginProgress(std::uint64_t /*frames*/) override { told += "beginProgress"; }
    void setProgress(double percent) override
    {
        percents += percent;
        if (onProgress)
            onProgress();
    }
    void endProgress() override { told += "endProgress"; }
    void movieRenamed(const QString &meant, const QString &moved) override
    {
        told += "renamed " + meant + " " + moved;
    }
    void recordingKept(const QString &id) override { kept += id; }
    void alert(const QString &message, const QString &informativeText) override
    {
        told += "alert";
        alerts += message + "|" + informativeText;
        if (onAlert)
            onAlert();
    }
    void alertError(const QString &sentence) override { alert("Error", sentence); }
    bool confirmQuit(const QString &message, const QString &informativeText) override
    {
        told += "confirmQuit " + message + "|" + informativeText;
        return quits;
    }
    void reveal(const QString &revealed) override
    {
        told += "reveal " + revealed;
        if (onShown)
            onShown();
    }
    void open(const QString &opened) override
    {
        told += "open " + opened;
        if (onShown)
            onShown();
    }
    void announceMovie(const QString &movie, double seconds, const QString &flaws) override
    {
        told += "announce " + movie;
        announcedSeconds = seconds;
        announcedFlaws = flaws;
    }
    void inhibitIdle(bool inhibits) override { told += inhibits ? "inhibit" : "release"; }
};

/// A recorder that says yes or no, and delivers what the test gives it.
class FakeAudioRecorder final : public AudioRecorder
{
public:
    explicit FakeAudioRecorder(std::uint32_t id)
        : deviceID(id)
    {
    }

    bool starts = true;
    AudioStreamBasicDescription format = defaultAudioStreamBasicDescription();
    std::atomic<int> startCount = 0;
    std::atomic<int> stops = 0;
    std::uint32_t deviceID;
    std::function<void()> onStart;
    std::function<void()> onStop;
    std::function<void()> onDestroyed;

    ~FakeAudioRecorder() override
    {
        if (onDestroyed)
            onDestroyed();
    }
    void setDelegate(PKAudioRecorderDelegate *newDelegate) override { m_delegate = newDelegate; }
    void setDeviceID(std::uint32_t newID) override { deviceID = newID; }
    bool startRecordWithFormat(const AudioStreamBasicDescription &asked) override
    {
        EXPECT_EQ(asked, defaultAudioStreamBasicDescription());
        ++startCount;
        if (onStart)
            onStart();
        return starts;
    }
    AudioStreamBasicDescription currentDataFormat() const override { return format; }
    void stopRecord() override
    {
        ++stops;
        if (onStop)
            onStop();
    }
    void deliver(const void *bytes, std::uint32_t byteCount)
    {
        m_delegate->dataRecord(*this, bytes, byteCount, format);
    }
    void lose() { m_delegate->soundWasLost(*this); }
    void comeBack() { m_delegate->soundCameBack(*this); }

private:
    PKAudioRecorderDelegate *m_delegate = nullptr;
};

/// Has the devices that the test names; their numbers are 11, 12 and so on.
class FakeAudioControl final : public AudioControl
{
public:
    QStringList names;
    QList<std::uint32_t> monitors; ///< their numbers
    PKAudioControlDelegate *delegate = nullptr;
    FakeAudioRecorder *recorder = nullptr; ///< the one that was made last
    QList<FakeAudioRecorder *> recorders;  ///< all that were made
    std::function<void()> onStart;         ///< of the recorders that are made from now on

    QStringList inputDevicesName() override { return names; }
    std::uint32_t deviceIDFromName(const QString &name) override
    {
        const qsizetype index = names.indexOf(name);
        return index < 0 ? 0 : static_cast<std::uint32_t>(11 + index);
    }
    bool isMonitor(std::uint32_t deviceID) override { return monitors.contains(deviceID); }
    void setDelegate(PKAudioControlDelegate *newDelegate) override { delegate = newDelegate; }
    std::unique_ptr<AudioRecorder> createRecorder(std::uint32_t deviceID) override
    {
        auto made = std::make_unique<FakeAudioRecorder>(deviceID);
        recorder = made.get();
        recorder->onStart = onStart;
        recorders += recorder;
        return made;
    }
};

} // namespace vornic
