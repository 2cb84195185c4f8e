#pragma once

#include "support/sound_server.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <thread>

namespace vornic {

/// A sound server of the test's own, of each kind that is installed.
class SoundServerTest : public ::testing::TestWithParam<test::SoundServer::Kind>
{
protected:
    void SetUp() override
    {
        if (!test::SoundServer::isInstalled(GetParam()))
            GTEST_SKIP() << "this sound server is not installed";
        server = test::SoundServer::start(GetParam());
        ASSERT_TRUE(server);
    }

    /// Runs the main loop until \a holds, \a milliseconds at most.
    static bool runUntil(const std::function<bool()> &holds, int milliseconds = 20'000)
    {
        QElapsedTimer timer;
        timer.start();
        while (!holds() && timer.elapsed() < milliseconds) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return holds();
    }

    int argc = 1;
    char name[5] = "test";
    char *argv[2] = { name, nullptr };
    QCoreApplication application { argc, argv };
    std::unique_ptr<test::SoundServer> server;
};

inline std::string nameOfServer(const ::testing::TestParamInfo<test::SoundServer::Kind> &kind)
{
    return kind.param == test::SoundServer::Kind::PulseAudio ? "PulseAudio" : "PipeWire";
}

} // namespace vornic
