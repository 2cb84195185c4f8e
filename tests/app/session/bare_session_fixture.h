#pragma once

#include "app/session/recording.h"
#include "app/session/recording_session.h"
#include "app/session/session_fakes.h"
#include "capture/spool/VNBufferMgr.h"
#include "display/fake_display.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>

namespace vornic {

/// A session without a delegate, on a fake display of \a size, with folders of its own and a clock that the test sets.
class BareSessionTest : public ::testing::Test
{
protected:
    explicit BareSessionTest(QSize size = { 320, 200 })
        : display(std::make_shared<FakeDisplay>(size))
    {
        qputenv("XDG_CACHE_HOME", folder.filePath("cache").toUtf8());
        setMainDisplay(display);
        frontEnd.path = folder.filePath("movie.mp4");
    }
    ~BareSessionTest() override
    {
        session.reset();
        setMainDisplay(nullptr);
    }

    /// Each picture that it keeps is noted, and moves the clock on.
    void makeSession()
    {
        session = std::make_unique<RecordingSession>(frontEnd.frontEnd(), options, &audioControl);
        session->wishes().clock = [this] { return time.load(); };
        session->bufferMgr().setFreeSpaceProbe([this] { return freeBytes.load(); });
        QObject::connect(session.get(), &RecordingSession::clockTicked, session.get(), [this](qint64 ticks) {
            timestamps += ticks;
            time = time + step;
        });
    }

    int argc = 1;
    char name[5] = "test";
    char *argv[2] = { name, nullptr };
    QCoreApplication application { argc, argv };
    QTemporaryDir folder;
    std::shared_ptr<FakeDisplay> display;
    FakeFrontEnd frontEnd;
    VNOption options;
    FakeAudioControl audioControl;
    std::atomic<double> time = 1000; ///< seconds
    double step = 0.25;              ///< by which each kept frame moves the clock on
    std::atomic<std::uint64_t> freeBytes = 100'000'000'000;
    QList<qint64> timestamps; ///< of the frames that were kept
    std::unique_ptr<RecordingSession> session;
};

} // namespace vornic
