#include "app/session/unix_signals.h"
#include "support/wait_until.h"

#include <QCoreApplication>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>

namespace vornic {
namespace {

/// More than any socket holds that nobody reads.
constexpr int flood = 5000;

TEST(UnixSignalsTest, AFloodOfThemHoldsNobodyUp)
{
    const UnixSignals signalled([] {});
    QSignalSpy asked(&signalled, &UnixSignals::terminationAsked);
    for (int i = 0; i < flood; ++i)
        std::raise(SIGTERM);
    EXPECT_TRUE(test::waitUntil([&] {
        QCoreApplication::processEvents();
        return !asked.isEmpty();
    }));
    EXPECT_EQ(asked.first().first().toInt(), SIGTERM);
}

TEST(UnixSignalsTest, EachTellsWhatIsAskedFor)
{
    const UnixSignals signalled([] {});
    QSignalSpy ended(&signalled, &UnixSignals::terminationAsked);
    QSignalSpy left(&signalled, &UnixSignals::leaveAsked);
    QSignalSpy paused(&signalled, &UnixSignals::pauseAsked);
    for (const int number : { SIGUSR1, SIGUSR1, SIGINT, SIGQUIT })
        std::raise(number);
    EXPECT_TRUE(test::waitUntil([&] { return !left.isEmpty(); }));
    EXPECT_EQ(paused.size(), 2);
    EXPECT_EQ(ended.size(), 1);
    EXPECT_EQ(left.size(), 1);
}

TEST(UnixSignalsTest, WhoeverIsInterruptedKeepsItsErrno)
{
    const UnixSignals signalled;
    for (int i = 0; i < flood; ++i) // until the handler's own calls fail
        std::raise(SIGTERM);
    errno = ENOENT;
    std::raise(SIGTERM);
    EXPECT_EQ(errno, ENOENT);
}

} // namespace
} // namespace vornic
