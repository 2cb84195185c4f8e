#include "base/exit_guard.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace vornic {
namespace {

constexpr int statusOfExit = 3;
constexpr int statusOfLastWork = 7;
constexpr int statusOfTornDown = 9;

/// What threads may be working with: it is not to be destroyed under them.
struct Static {
    Static() = default;
    ~Static() { std::_Exit(statusOfTornDown); }
    Static(const Static &) = delete;
    Static &operator=(const Static &) = delete;
};

void makeStatic()
{
    static const Static made;
}

TEST(ExitGuardDeathTest, TheLastWorkIsDoneBeforeAnythingIsDestroyed)
{
    const auto exitInTheMiddle = [] {
        ExitGuard guard;
        guard.setLastWork([] { return statusOfLastWork; });
        makeStatic();
        std::exit(statusOfExit);
    };
    EXPECT_EXIT(exitInTheMiddle(), testing::ExitedWithCode(statusOfLastWork), "");
}

TEST(ExitGuardDeathTest, AnotherLastWorkTakesItsPlace)
{
    const auto exitAtTheEnd = [] {
        ExitGuard guard;
        guard.setLastWork([] { return statusOfLastWork; });
        guard.setLastWork([] { return 0; });
        std::exit(statusOfExit);
    };
    EXPECT_EXIT(exitAtTheEnd(), testing::ExitedWithCode(0), "");
}

TEST(ExitGuardDeathTest, BehindTheGuardExitIsWhatItWas)
{
    const auto exitBehind = [] {
        {
            ExitGuard guard;
            guard.setLastWork([] { return statusOfLastWork; });
        }
        std::exit(statusOfExit);
    };
    EXPECT_EXIT(exitBehind(), testing::ExitedWithCode(statusOfExit), "");
}

} // namespace
} // namespace vornic
