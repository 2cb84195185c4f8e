#pragma once

#include "app/VornicAppDelegate.h"
#include "app/audio_device_list.h"
#include "app/front_end.h"
#include "audio/PKAudioControlDelegate.h"
#include "audio/PKAudioRecorderDelegate.h"
#include "audio/audio_control.h"
#include "audio/audio_recorder.h"
#include "capture/VNBufferMgr.h"
#include "options/VNLogoContext.h"
#include "options/VNOption.h"
#include "platform/display/fake_display.h"
#include "platform/log.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace vornic {

/// Answers as a test wants and writes down what it was told.
class FakeFrontEnd : public FrontEnd
{
public:
    bool goesOn = true;
    std::optional<QString> path;
    int hintResponse = responseContinue;
    bool quits = true;
    std::optional<QString> otherPath;
    std::function<void()> onAlert;
    std::function<void()> onProgress;

    QStringList told;   ///< every call, in order
    QStringList titles; ///< of the stop item
    QStringList alerts; ///< message and informative text
    QList<double> percents;

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
    void showHint(std::function<void(int)> answer) override
    {
        told += "hint";
        answer(hintResponse);
    }
    void showStopItem(const QString &title) override
    {
        told += "showStopItem";
        titles += title;
    }
    void setStopItemTitle(const QString &title) override { titles += title; }
    void hideStopItem() override { told += "hideStopItem"; }
    void minimiseMainWindow() override { told += "minimise"; }
    void setSaving(bool saving) override { told += saving ? "saving" : "notSaving"; }
    void askForOtherFile(const QString &type, std::function<void(std::optional<QString>)> answer) override
    {
        told += "otherFile " + type;
        answer(std::exchange(otherPath, std::nullopt));
    }
    void beginProgress() override { told += "beginProgress"; }
    void setProgress(double percent) override
    {
        percents += percent;
        if (onProgress)
            onProgress();
    }
    void endProgress() override { told += "endProgress"; }
    void alert(const QString &message, const QString &informativeText) override
    {
        told += "alert";
        alerts += message + "|" + informativeText;
        if (onAlert)
            onAlert();
    }
    bool confirmQuit(const QString &message, const QString &informativeText) override
    {
        told += "confirmQuit " + message + "|" + informativeText;
        return quits;
    }
    void reveal(const QString &revealed) override { told += "reveal " + revealed; }
    void open(const QString &opened) override { told += "open " + opened; }
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

    void setDelegate(PKAudioRecorderDelegate *newDelegate) override { m_delegate = newDelegate; }
    void setDeviceID(std::uint32_t newID) override { deviceID = newID; }
    bool startRecordWithFormat(const AudioStreamBasicDescription &asked) override
    {
        EXPECT_EQ(asked, defaultAudioStreamBasicDescription());
        ++startCount;
        return starts;
    }
    AudioStreamBasicDescription currentDataFormat() const override { return format; }
    void stopRecord() override { ++stops; }
    void deliver(const void *bytes, std::uint32_t byteCount)
    {
        m_delegate->dataRecord(*this, bytes, byteCount, format);
    }

private:
    PKAudioRecorderDelegate *m_delegate = nullptr;
};

/// Has the devices that the test names; their numbers are 11, 12 and so on.
class FakeAudioControl final : public AudioControl
{
public:
    QStringList names;
    PKAudioControlDelegate *delegate = nullptr;
    FakeAudioRecorder *recorder = nullptr; ///< the one that was made last

    QStringList inputDevicesName() override { return names; }
    std::uint32_t deviceIDFromName(const QString &name) override
    {
        const qsizetype index = names.indexOf(name);
        return index < 0 ? 0 : static_cast<std::uint32_t>(11 + index);
    }
    void setDelegate(PKAudioControlDelegate *newDelegate) override { delegate = newDelegate; }
    std::unique_ptr<AudioRecorder> createRecorder(std::uint32_t deviceID) override
    {
        auto made = std::make_unique<FakeAudioRecorder>(deviceID);
        recorder = made.get();
        return made;
    }
};

/// A delegate on a fake display of \a 320 x 200, with folders of its own.
class SessionTest : public ::testing::Test
{
protected:
    SessionTest()
    {
        qputenv("XDG_CACHE_HOME", folder.filePath("cache").toUtf8());
        qputenv("XDG_CONFIG_HOME", folder.filePath("config").toUtf8());
        setMainDisplay(display);
        setLogSink([this](const QString &line) {
            const std::lock_guard lock(mutex);
            logged += line;
        });
        frontEnd.path = folder.filePath("movie.mp4");
        makeDelegate(std::make_unique<VNOption>());
    }
    ~SessionTest() override
    {
        delegate.reset();
        setLogSink({});
        setMainDisplay(nullptr);
    }

    void makeDelegate(std::unique_ptr<VNOption> options)
    {
        delegate = options ? std::make_unique<VornicAppDelegate>(frontEnd, std::move(options))
                           : std::make_unique<VornicAppDelegate>(frontEnd);
        delegate->setAudioControl(&audioControl);
        delegate->applicationDidFinishLaunching();
        delegate->bufferMgr().setFreeSpaceProbe([this] { return freeBytes.load(); });
    }

    /// Runs the main loop until \a holds, half a minute at most.
    static bool runUntil(const std::function<bool()> &holds)
    {
        QElapsedTimer timer;
        timer.start();
        while (!holds() && timer.elapsed() < 30'000) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return holds();
    }
    bool runUntilIdle()
    {
        return runUntil([this] { return delegate->state() == 0; });
    }
    bool runUntilGrabbed(std::uint64_t frames)
    {
        return runUntil([this, frames] { return delegate->counts().framesGrabbed >= frames; });
    }
    void runFor(int milliseconds)
    {
        QElapsedTimer timer;
        timer.start();
        runUntil([&] { return timer.elapsed() >= milliseconds; });
    }
    /// Starts, waits for that many frames, stops and waits for the movie.
    bool record(std::uint64_t frames)
    {
        delegate->recorded();
        if (!runUntilGrabbed(frames))
            return false;
        delegate->stopRecord();
        return runUntilIdle();
    }
    QString moviePath() const { return frontEnd.path.value_or(QString()); }

    int argc = 1;
    char name[5] = "test";
    char *argv[2] = { name, nullptr };
    QCoreApplication application { argc, argv };
    QTemporaryDir folder;
    std::shared_ptr<FakeDisplay> display = std::make_shared<FakeDisplay>(QSize(320, 200));
    std::atomic<std::uint64_t> freeBytes = 100'000'000'000;
    std::mutex mutex;
    QStringList logged;
    FakeFrontEnd frontEnd;
    FakeAudioControl audioControl;
    std::unique_ptr<VornicAppDelegate> delegate;
};

} // namespace vornic
