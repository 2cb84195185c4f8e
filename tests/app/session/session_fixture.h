#pragma once

#include "app/VornicAppDelegate.h"
#include "app/session/session_fakes.h"
#include "base/log.h"
#include "base/main_queue.h"
#include "base/user_defaults.h"
#include "capture/spool/VNBufferMgr.h"
#include "display/fake_display.h"
#include "support/wait_until.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <mutex>

namespace vornic {

/// A delegate on a fake display of \a 320 x 200, with folders of its own.
class SessionTest : public ::testing::Test
{
protected:
    SessionTest()
    {
        qputenv("XDG_CACHE_HOME", folder.filePath("cache").toUtf8());
        qputenv("XDG_CONFIG_HOME", folder.filePath("config").toUtf8());
        // Qt keeps to the first folder of settings that a process has.
        for (const char *key : { "com.kavlor.options", "com.kavlor.audioDevice" })
            user_defaults::remove(QLatin1StringView(key));
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
        delegate = options ? std::make_unique<VornicAppDelegate>(frontEnd.frontEnd(), std::move(options))
                           : std::make_unique<VornicAppDelegate>(frontEnd.frontEnd());
        delegate->setAudioControl(&audioControl);
        delegate->applicationDidFinishLaunching();
        delegate->bufferMgr().setFreeSpaceProbe([this] { return freeBytes.load(); });
    }

    /// Runs the main loop until \a holds, half a minute at most.
    static bool runUntil(const std::function<bool()> &holds)
    {
        return test::waitUntil(holds, std::chrono::seconds(30));
    }
    bool runUntilIdle()
    {
        return runUntil([this] { return delegate->state() == 0; });
    }
    bool runUntilGrabbed(std::uint64_t frames)
    {
        return runUntil([this, frames] { return delegate->counts().framesGrabbed >= frames; });
    }
    /// Runs what the main thread has been given up to now.
    static bool runPosted()
    {
        bool hasRun = false;
        main_queue::async([&hasRun] { hasRun = true; });
        return runUntil([&hasRun] { return hasRun; });
    }
    /// Runs the main loop until that many more passes have grabbed a picture.
    bool runForPasses(int passes)
    {
        const int before = display->grabCount();
        return runUntil([this, before, passes] { return display->grabCount() >= before + passes; });
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
