#include "desktop/global_key.h"
#include "support/wait_until.h"
#include "support/xvfb_server.h"

#include <QCoreApplication>

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <stop_token>
#include <thread>

namespace vornic {
namespace {

using namespace test;
using Answer = GlobalKey::Answer;

class X11GlobalKeyTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(m_server); }

    /// A listener that counts.
    struct Listener {
        Listener()
        {
            QObject::connect(key.get(), &GlobalKey::pressed, key.get(), [this] { ++count; });
        }
        std::unique_ptr<GlobalKey> key = GlobalKey::create();
        int count = 0;
    };

    std::unique_ptr<XvfbServer> m_server = XvfbServer::start();
};

TEST_F(X11GlobalKeyTest, IsHeardWhateverHasTheFocus)
{
    const auto openbox = m_server->startOpenbox();
    ASSERT_TRUE(openbox);
    const auto xterm = m_server->startXterm("cat");
    ASSERT_TRUE(xterm);
    Listener listener;
    ASSERT_EQ(listener.key->listenFor("Ctrl+Alt+R"), Answer::Heard);
    m_server->xdotool({ "key", "ctrl+alt+r" });
    EXPECT_TRUE(waitUntil([&] { return listener.count == 1; }));
    m_server->xdotool({ "key", "r" });
    m_server->xdotool({ "key", "ctrl+r" });
    m_server->xdotool({ "key", "ctrl+alt+r" });
    EXPECT_TRUE(waitUntil([&] { return listener.count >= 2; }));
    EXPECT_EQ(listener.count, 2) << "other keys are not heard";
}

TEST_F(X11GlobalKeyTest, IsHeardWithTheLocksOn)
{
    Listener listener;
    ASSERT_EQ(listener.key->listenFor("F9"), Answer::Heard);
    int expected = 0;
    for (const char *lock : { "Num_Lock", "Caps_Lock", "Num_Lock" }) { // num; both; caps
        m_server->xdotool({ "key", lock });
        m_server->xdotool({ "key", "F9" });
        ++expected;
        EXPECT_TRUE(waitUntil([&] { return listener.count == expected; })) << lock;
    }
}

TEST_F(X11GlobalKeyTest, AKeyThatIsHeldIsHeardOnce)
{
    ASSERT_EQ(m_server->run({ "xset", "r", "rate", "100", "50" }), 0);
    Listener listener;
    ASSERT_EQ(listener.key->listenFor("F9"), Answer::Heard);
    m_server->xdotool({ "keydown", "F9" });
    EXPECT_TRUE(waitUntil([&] { return listener.count == 1; }));
    EXPECT_FALSE(waitUntil([&] { return listener.count > 1; }, std::chrono::milliseconds(600)))
        << "the server has repeated it some twenty times";
    m_server->xdotool({ "keyup", "F9" });
    EXPECT_TRUE(waitUntil([&] {
        m_server->xdotool({ "key", "F9" });
        return listener.count == 2;
    })) << "pressed again it is heard again";
}

TEST_F(X11GlobalKeyTest, AKeyThatAnotherProgramHearsIsToldAndNoneIsKept)
{
    const Listener other;
    ASSERT_EQ(other.key->listenFor("Ctrl+F7"), Answer::Heard);
    Listener listener;
    EXPECT_EQ(listener.key->listenFor("Ctrl+F7"), Answer::TakenByOther);
    EXPECT_EQ(listener.key->listenFor("Ctrl+F8"), Answer::Heard);
    EXPECT_EQ(other.key->listenFor({}), Answer::Heard);
    EXPECT_TRUE(waitUntil([&] { return listener.key->listenFor("Ctrl+F7") == Answer::Heard; }))
        << "once the other lets go";
}

TEST_F(X11GlobalKeyTest, TheKeyBeforeIsNoLongerHeard)
{
    Listener listener;
    ASSERT_EQ(listener.key->listenFor("F9"), Answer::Heard);
    ASSERT_EQ(listener.key->listenFor("F10"), Answer::Heard);
    m_server->xdotool({ "key", "F9" });
    m_server->xdotool({ "key", "F10" });
    EXPECT_TRUE(waitUntil([&] { return listener.count >= 1; }));
    EXPECT_EQ(listener.count, 1);
}

TEST_F(X11GlobalKeyTest, FollowsAnotherLayoutOfTheKeyboard)
{
    Listener listener;
    ASSERT_EQ(listener.key->listenFor("Ctrl+Y"), Answer::Heard);
    ASSERT_EQ(m_server->run({ "setxkbmap", "de" }), 0);
    EXPECT_TRUE(waitUntil([&] {
        m_server->xdotool({ "key", "ctrl+y" });
        return listener.count > 0;
    }));
}

/// A program that takes F9 as soon as nobody has it.
class Rival
{
public:
    Rival()
        : m_thread([](const std::stop_token &stop) {
            constexpr xcb_keycode_t f9 = 75;
            xcb_connection_t *const connection = xcb_connect(nullptr, nullptr);
            const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
            while (!stop.stop_requested()) {
                constexpr auto mode = XCB_GRAB_MODE_ASYNC;
                std::free(xcb_request_check(connection,
                                            xcb_grab_key_checked(connection, 0, root, 0, f9, mode, mode)));
            }
            xcb_disconnect(connection);
        })
    {
    }

private:
    std::jthread m_thread;
};

/// The server tells of a change when another keyboard is used than before, too, and the key may be pressed just then.
TEST_F(X11GlobalKeyTest, IsNeverLetGoWhileTheKeyboardKeepsIt)
{
    Listener listener;
    ASSERT_EQ(listener.key->listenFor("F9"), Answer::Heard);
    const Rival rival;
    xcb_connection_t *const connection = xcb_connect(nullptr, nullptr);
    for (xcb_keysym_t i = 0; i < 200; ++i) {
        constexpr xcb_keycode_t unused = 250;
        const xcb_keysym_t symbol = 0x61 + i % 2; // "a" or "b"
        EXPECT_FALSE(xcb_request_check(
            connection, xcb_change_keyboard_mapping_checked(connection, 1, unused, 1, &symbol)));
        QCoreApplication::processEvents();
    }
    xcb_disconnect(connection);
    m_server->xdotool({ "key", "F9" });
    EXPECT_TRUE(waitUntil([&] { return listener.count == 1; }));
}

TEST_F(X11GlobalKeyTest, WhatTheKeyboardDoesNotHaveIsTold)
{
    Listener listener;
    EXPECT_EQ(listener.key->listenFor("nonsense"), Answer::NoSuchKey);
    EXPECT_EQ(listener.key->listenFor("Ctrl+Ö"), Answer::NoSuchKey);
}

TEST_F(X11GlobalKeyTest, WithoutAServerNoKeyIsHeard)
{
    m_server.reset();
    qunsetenv("DISPLAY");
    const auto key = GlobalKey::create();
    EXPECT_EQ(key->listenFor("F9"), Answer::NotOnThisDesktop);
    EXPECT_EQ(key->listenFor({}), Answer::Heard);
}

} // namespace
} // namespace vornic
