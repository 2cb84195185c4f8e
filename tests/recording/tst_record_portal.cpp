#include "program_fixture.h"
#include "support/cast_source.h"
#include "support/fake_portal.h"
#include "support/pipewire_server.h"
#include "support/private_bus.h"
#include "support/test_pictures.h"

#include <QElapsedTimer>

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <memory>

namespace vornic {
namespace {

using test::eventually;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr QSize size(320, 200);

/// The built program in a Wayland session without a compositor: the portal and the stream are the test's.
class RecordPortalTest : public ProgramTest
{
protected:
    void SetUp() override
    {
        m_server = test::PipeWireServer::start();
        ASSERT_TRUE(m_server);
        m_source = test::CastSource::start(m_server->connect(), size);
        ASSERT_TRUE(m_source);
        m_portal->node = m_source->node();
        m_portal->remote = [this] { return m_server->connect(); };
    }

    QProcessEnvironment environment() const override
    {
        QProcessEnvironment variables = ProgramTest::environment();
        for (const char *absent : { "DISPLAY", "WAYLAND_DISPLAY" })
            variables.remove(absent);
        variables.insert("XDG_SESSION_TYPE", "wayland");
        variables.insert("XDG_RUNTIME_DIR", folder.path());
        variables.insert("VORNIC_DISPLAY", "portal");
        return variables;
    }

    void begin(const QStringList &options = {})
    {
        m_process
            = startVornic(QStringList { "record", "--ignore-low-space" } + options + QStringList { "o.mp4" });
    }

    /// Sends pictures that move until \a isSo.
    [[nodiscard]] bool showUntil(const std::function<bool()> &isSo)
    {
        return eventually([&] {
            if (m_source) {
                static_cast<void>(m_source->send({ nextPicture() }));
                m_error += QString::fromUtf8(m_process->readAllStandardError());
            }
            return isSo();
        });
    }
    /// A stripe that moves, above the known picture.
    [[nodiscard]] QImage nextPicture()
    {
        QImage picture = m_known;
        ++m_sent;
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < picture.width(); ++x)
                picture.setPixel(x, y, (x + m_sent) % 32 < 16 ? 0xffffffff : 0xff000000);
        return picture;
    }
    /// Sends that many and for so long that more than a few are recorded on a busy machine too: the first are not as sharp.
    [[nodiscard]] bool recordFor(qsizetype pictures)
    {
        if (!showUntil([&] { return m_error.contains("Recording"); }))
            return false;
        const int before = m_sent;
        QElapsedTimer timer;
        timer.start();
        return showUntil([&] { return m_sent >= before + pictures && timer.hasExpired(800); });
    }
    /// Lets the program come to its end, and the portal answer meanwhile.
    Result end()
    {
        EXPECT_TRUE(showUntil([&] { return m_process->state() == QProcess::NotRunning; }));
        Result result = finish(*m_process);
        result.error.prepend(m_error);
        return result;
    }

    [[nodiscard]] QImage lastPicture(QSize pictureSize) const
    {
        const auto packets = testing::numbersOf(testing::probe(movie()), "packets", "video", "pts");
        return testing::decodedPicture(movie(), static_cast<int>(packets.size()) - 1, pictureSize);
    }
    /// Whether the last frame of the movie shows the bars, whatever is in its upper rows.
    [[nodiscard]] bool endsWithKnownPicture() const
    {
        const QImage shown = lastPicture(size);
        return std::ranges::all_of(test::knownPatches(size), [&](const test::KnownPatch &patch) {
            const QColor middle = shown.pixelColor(patch.rectangle.center());
            const QColor sent(patch.colour);
            const bool isSame = std::abs(middle.red() - sent.red()) <= 12
                && std::abs(middle.green() - sent.green()) <= 12
                && std::abs(middle.blue() - sent.blue()) <= 12;
            EXPECT_TRUE(isSame) << middle.name().toStdString() << " instead of " << sent.name().toStdString();
            return isSame;
        });
    }

    std::unique_ptr<test::PipeWireServer> m_server;
    std::unique_ptr<test::FakePortal> m_portal = std::make_unique<test::FakePortal>(test::sessionBusDaemon());
    std::unique_ptr<test::CastSource> m_source;
    QImage m_known = test::knownPicture(size);
    int m_sent = 0;
    std::unique_ptr<QProcess> m_process;
    QString m_error; ///< what it has said so far
};

TEST_F(RecordPortalTest, WhatIsSentIsInTheMovie)
{
    begin({ "--duration", "1" });
    const Result result = end();
    ASSERT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_EQ(sizeOf(movie()), size);
    EXPECT_TRUE(endsWithKnownPicture());
    const QString held = m_portal->options("Inhibit").value("handle_token").toString();
    EXPECT_FALSE(held.isEmpty()) << "the desktop stays awake meanwhile";
    EXPECT_EQ(m_portal->closed().size(), 2);
    EXPECT_TRUE(m_portal->closed().contains(m_portal->sessionPath()));
    EXPECT_EQ(m_portal->closed().filter(held).size(), 1);
}

TEST_F(RecordPortalTest, ARegionIsOfTheStreamWhoseSizeNobodyKnewBefore)
{
    begin({ "--duration", "1", "--region", "40,50,64,32" });
    const Result result = end();
    ASSERT_EQ(result.status, 0) << result.error.toStdString();
    const QSize region(64, 32);
    EXPECT_EQ(sizeOf(movie()), region);
    const QImage shown = lastPicture(region);
    const QImage sent = m_known.copy(40, 50, 64, 32);
    for (const int x : { 1, 30, 60 })
        EXPECT_NEAR(shown.pixelColor(x, 16).red(), sent.pixelColor(x, 16).red(), 6) << x;
}

TEST_F(RecordPortalTest, ARegionOffTheStreamIsToldOf)
{
    begin({ "--region", "320,0,10,10" });
    const Result result = end();
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.error.toStdString(), HasSubstr("lies off the display, which has 320x200 pixels"));
    EXPECT_TRUE(eventually([&] { return m_portal->closed() == QStringList { m_portal->sessionPath() }; }));
}

TEST_F(RecordPortalTest, AUserWhoSaysNoGetsOneSentence)
{
    m_portal->answers = { { "Start", 1 } };
    begin();
    const Result result = end();
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error.toStdString(),
              "vornic: The desktop was not allowed to show its screen to Vornic.\n");
    EXPECT_FALSE(QFile::exists(movie()));
}

TEST_F(RecordPortalTest, WithoutAPortalThereIsOneSentence)
{
    m_portal.reset();
    begin();
    const Result result = end();
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(
        result.error.toStdString(),
        "vornic: This desktop has no screen cast portal, through which its screen could be recorded.\n");
}

TEST_F(RecordPortalTest, APortalThatDiesWhileItsDialogStandsIsToldOf)
{
    m_portal->unanswered = QStringList { "Start" };
    begin();
    ASSERT_TRUE(eventually([&] { return m_portal->wasCalled("Start"); }));
    m_portal.reset();
    const Result result = end();
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error.toStdString(),
              "vornic: The desktop's portal gives no pictures of its screen: it has ended.\n");
    EXPECT_FALSE(QFile::exists(movie()));
}

TEST_F(RecordPortalTest, ASignalWhileTheDialogStandsGivesItUp)
{
    m_portal->unanswered = QStringList { "Start" };
    for (const int number : { SIGINT, SIGTERM, SIGQUIT }) {
        const auto dialogs = m_portal->service().calls("Start").size();
        m_error.clear();
        begin();
        ASSERT_TRUE(eventually([&] { return m_portal->service().calls("Start").size() > dialogs; }));
        ::kill(static_cast<pid_t>(m_process->processId()), number);
        const Result result = end();
        EXPECT_EQ(result.status, 1) << number;
        EXPECT_EQ(result.error.toStdString(), "vornic: Nothing was recorded.\n");
        EXPECT_FALSE(QFile::exists(movie()));
        EXPECT_TRUE(eventually([&] { return m_portal->closed().contains(m_portal->sessionPath()); }));
    }
}

TEST_F(RecordPortalTest, TheNextRecordingAsksNobody)
{
    m_portal->restoreToken = "remembered";
    for (int i = 0; i < 2; ++i) {
        begin({ "--duration", "1", "--overwrite" });
        const Result result = end();
        ASSERT_EQ(result.status, 0) << result.error.toStdString();
    }
    EXPECT_EQ(m_portal->options("SelectSources").value("restore_token"), "remembered");
}

TEST_F(RecordPortalTest, WhenPipeWireDiesWhatWasRecordedIsAMovie)
{
    begin();
    ASSERT_TRUE(recordFor(20));
    m_server->killPipeWire();
    const Result result = end();
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_THAT(result.error.toStdString(),
                HasSubstr("The display is gone: the recording ends with what it holds."));
    EXPECT_EQ(sizeOf(movie()), size);
    EXPECT_TRUE(endsWithKnownPicture());
}

TEST_F(RecordPortalTest, WhenTheStreamEndsWhatWasRecordedIsAMovie)
{
    begin();
    ASSERT_TRUE(recordFor(20));
    m_source.reset();
    const Result result = end();
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_THAT(result.error.toStdString(),
                HasSubstr("The display is gone: the recording ends with what it holds."));
    EXPECT_EQ(sizeOf(movie()), size);
    EXPECT_TRUE(endsWithKnownPicture());
}

TEST_F(RecordPortalTest, WhenTheDesktopEndsTheSessionWhatWasRecordedIsAMovie)
{
    begin();
    ASSERT_TRUE(recordFor(20));
    m_portal->closeSession();
    const Result result = end();
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_THAT(result.error.toStdString(), HasSubstr("The display is gone"));
    EXPECT_EQ(sizeOf(movie()), size);
    EXPECT_TRUE(endsWithKnownPicture());
}

TEST_F(RecordPortalTest, ThePortalMayDieWhileItIsRecorded)
{
    begin();
    ASSERT_TRUE(recordFor(10));
    m_portal.reset();
    ASSERT_TRUE(recordFor(10));
    m_process->terminate();
    const Result result = end();
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_THAT(result.error.toStdString(), Not(HasSubstr("The display is gone")));
    EXPECT_EQ(sizeOf(movie()), size);
    EXPECT_TRUE(endsWithKnownPicture());
}

TEST_F(RecordPortalTest, AMonitorThatBecomesSmallerIsFittedIntoTheMovie)
{
    begin();
    ASSERT_TRUE(recordFor(10));
    m_known = test::knownPicture(size / 2);
    m_source->resize(size / 2);
    ASSERT_TRUE(showUntil([&] { return m_source->send({ nextPicture() }); }));
    ASSERT_TRUE(recordFor(20));
    m_process->terminate();
    const Result result = end();
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_EQ(sizeOf(movie()), size);
    EXPECT_TRUE(endsWithKnownPicture());
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::test::PipeWireServer::isInstalled() ? vornic::test::runBusTests(argc, argv) : 77;
}
