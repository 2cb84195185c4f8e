#include "support/wait_until.h"
#include "wayland/transparent_pixel.h"
#include "wayland/wayland_connection.h"
#include "wayland/wayland_output_watch.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>

namespace vornic {
namespace {

/// A folder for sockets that is as empty as can be, with a name for a compositor in it.
class NoCompositor : public ::testing::Test
{
protected:
    void SetUp() override
    {
        qputenv("XDG_RUNTIME_DIR", m_folder.path().toLocal8Bit());
        qputenv("WAYLAND_DISPLAY", "wayland-0");
    }

    void expectNothing()
    {
        EXPECT_EQ(WaylandConnection::open(), nullptr);
        EXPECT_EQ(WaylandOutputWatch::start(), nullptr);
        const TransparentPixel pixel(std::chrono::hours(1));
        EXPECT_TRUE(test::waitUntil([&] { return pixel.state() == TransparentPixel::State::Over; }));
    }

    QTemporaryDir m_folder;
};

TEST_F(NoCompositor, ThereIsNoConnection)
{
    expectNothing();
}

TEST_F(NoCompositor, ASocketWhereNobodyAnswersIsGivenUp)
{
    const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    const QByteArray path = m_folder.filePath("wayland-0").toLocal8Bit();
    ASSERT_LT(static_cast<std::size_t>(path.size()), sizeof address.sun_path);
    std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
    ASSERT_EQ(bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    ASSERT_EQ(listen(listener, 8), 0);
    expectNothing();
    close(listener);
}

} // namespace
} // namespace vornic
