#include "desktop/global_key.h"
#include "support/private_bus.h"
#include "support/sway_session.h"

#include <gtest/gtest.h>

#include <optional>

namespace vornic::test {
namespace {

using Answer = GlobalKey::Answer;

/// The X server inside a Wayland session would grant the key and never hear it.
TEST(XwaylandGlobalKey, IsNotAskedForOfTheXServerInside)
{
    const auto desktop = SwaySession::start({ .hasXwayland = true });
    ASSERT_TRUE(desktop);
    ASSERT_FALSE(qEnvironmentVariableIsEmpty("DISPLAY"));
    const auto key = GlobalKey::create();
    std::optional<Answer> answer;
    QObject::connect(key.get(), &GlobalKey::answered, key.get(), [&](Answer told) { answer = told; });
    EXPECT_EQ(key->listenFor("F9"), Answer::Asked);
    EXPECT_TRUE(eventually([&] { return answer == Answer::NotOnThisDesktop; })) << "there is no portal";
    EXPECT_EQ(GlobalKey::createForMoment()->listenFor("Esc"), Answer::NotOnThisDesktop);
}

} // namespace
} // namespace vornic::test

int main(int argc, char **argv)
{
    return vornic::test::runBusTests(argc, argv);
}
