#pragma once

#include "support/sound_server.h"
#include "support/wait_until.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace vornic {

/// A sound server of the test's own, of each kind that is installed.
class SoundServerTest : public ::testing::TestWithParam<test::SoundServer::Kind>
{
protected:
    /// \a framesAtATime is how many PipeWire moves at a time, where its own number does not do.
    explicit SoundServerTest(int framesAtATime = 0)
        : quantum(framesAtATime)
    {
    }
    void SetUp() override
    {
        if (!test::SoundServer::isInstalled(GetParam()))
            GTEST_SKIP() << "this sound server is not installed";
        server = test::SoundServer::start(GetParam(), quantum);
        ASSERT_TRUE(server);
    }

    const int quantum;
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
