#include "base/log.h"
#include "overlay/fake_overlay_server.h"
#include "overlay/input_receiver.h"
#include "overlay/null_overlay_server.h"
#include "overlay/overlay_backend.h"
#include "overlay/window_on_top.h"
#include "overlay_main.h"

#include <QWindow>

#include <gmock/gmock.h>

#include <set>
#include <string>
#include <vector>

namespace vornic {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Receiver : public InputReceiver
{
public:
    void inputPressed(QPoint /*onDesktop*/) override { }
    void inputDragged(QPoint /*onDesktop*/) override { }
    void inputReleased() override { }
    void inputMoved(QPoint /*onDesktop*/) override { }
    bool filesEntered(const QMimeData & /*files*/, bool /*mayCopy*/) override { return false; }
    void filesLeft() override { }
    bool filesDropped(const QMimeData & /*files*/, QPoint /*onDesktop*/) override { return false; }
};

/// Leaves the environment and the log as they were.
class OverlayBackend : public testing::Test
{
protected:
    OverlayBackend()
    {
        qunsetenv("VORNIC_OVERLAY");
        m_sinkBefore = setLogSink([this](const QString &line) { logged.push_back(line.toStdString()); });
    }
    ~OverlayBackend() override
    {
        qunsetenv("VORNIC_OVERLAY");
        setLogSink(m_sinkBefore);
    }

    template<typename Server>
    [[nodiscard]] bool creates()
    {
        const auto server = createOverlayServer(receiver);
        return dynamic_cast<const Server *>(server.get());
    }

    Receiver receiver;
    std::vector<std::string> logged;

private:
    LogSink m_sinkBefore;
};

TEST_F(OverlayBackend, TheTableEndsWithTheNullBackend)
{
    std::set<std::string_view> ids;
    for (const OverlayBackendEntry &entry : overlayBackends()) {
        EXPECT_TRUE(ids.insert(entry.id).second) << entry.id << " twice";
        EXPECT_EQ(entry.selectedByItself, !entry.id.starts_with("fake"));
    }
    EXPECT_THAT(ids, Contains("fake"));
    EXPECT_EQ(overlayBackends().back().id, "null");
}

TEST_F(OverlayBackend, WithoutAServerItIsTheNullBackend)
{
    EXPECT_TRUE(creates<NullOverlayServer>());
    EXPECT_THAT(logged, IsEmpty());
}

TEST_F(OverlayBackend, TheEnvironmentForcesOneByItsId)
{
    qputenv("VORNIC_OVERLAY", "fake");
    EXPECT_TRUE(creates<FakeOverlayServer>());
    qputenv("VORNIC_OVERLAY", "null");
    EXPECT_TRUE(creates<NullOverlayServer>());
    EXPECT_THAT(logged, IsEmpty());
}

TEST_F(OverlayBackend, WindowsAreKeptOnTopByAnObjectEverywhere)
{
    QWindow window;
    EXPECT_TRUE(WindowOnTop::create(window));
    for (const char *id : { "fake", "null", "other" }) {
        qputenv("VORNIC_OVERLAY", id);
        EXPECT_TRUE(WindowOnTop::create(window)) << id;
    }
}

TEST_F(OverlayBackend, AnUnknownBackendIsNamedWithThoseThatThereAre)
{
    qputenv("VORNIC_OVERLAY", "other");
    EXPECT_TRUE(creates<NullOverlayServer>());
    EXPECT_THAT(logged, ElementsAre(AllOf(HasSubstr("\"other\""), HasSubstr("fake, fake-surface, null"))));
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runOverlayTests(argc, argv);
}
