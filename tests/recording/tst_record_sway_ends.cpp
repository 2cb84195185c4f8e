#include "record_sway_fixture.h"
#include "support/private_bus.h"
#include "support/scoped_environment.h"

#include <csignal>
#include <string>
#include <vector>

namespace vornic {
namespace {

using Part = test::ScreenCastPortal::Part;
using Sentences = std::vector<std::string>;

/// What the program says when parts of the desktop refuse or die.
class RecordSwayEndsTest : public RecordSwayTest
{
protected:
    /// Records the known picture, which moves, until a second has been recorded.
    void beginRecording()
    {
        m_process = startVornic({ "record", "--ignore-low-space", "o.mp4" });
        ASSERT_TRUE(showUntil(test::knownPicture(size), [&] {
            m_error += QString::fromUtf8(m_process->readAllStandardError());
            m_process->waitForReadyRead(1);
            return m_error.contains("00:00:00") || m_process->state() == QProcess::NotRunning;
        }));
        const std::size_t drawn = m_drawnAt.size();
        ASSERT_TRUE(showUntil(test::knownPicture(size), [&] { return m_drawnAt.size() > drawn + 30; }));
    }
    Result endRecording()
    {
        Result result = finish(*m_process);
        result.error.prepend(m_error);
        return result;
    }
    /// What was said on standard error beside what tells how far the recording is.
    static Sentences sentencesIn(const QString &error)
    {
        Sentences sentences;
        for (const QString &line : error.split('\n'))
            if (line.startsWith("vornic: "))
                sentences.push_back(line.mid(8).toStdString());
        return sentences;
    }
    void expectMovieOfWhatWasShown() const
    {
        EXPECT_EQ(sizeOf(movie()), size);
        EXPECT_GE(frameCount(), 5);
        EXPECT_LE(differenceFromBars(lastFrame(size)), 6);
    }

    /// The first is what is always logged where there is no picture.
    static inline const Sentences displayIsGone {
        "Failed to shot screen buffer.", "The display is gone: the recording ends with what it holds."
    };
    std::unique_ptr<QProcess> m_process;
    QString m_error; ///< what it has said so far
};

TEST_F(RecordSwayEndsTest, AUserWhoSaysNo)
{
    startDesktop({ .size = size }, Consent::Refused);
    const Result result = record({ "--duration", "1" });
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error.toStdString(),
              "vornic: The desktop was not allowed to show its screen to Vornic.\n");
    EXPECT_EQ(entries().filter("o.mp4"), QStringList());
}

/// Also where there is an X server, which is none that could be recorded.
TEST_F(RecordSwayEndsTest, NoPortal)
{
    for (const bool hasXwayland : { false, true }) {
        m_desktop = test::SwaySession::start({ .size = size, .hasXwayland = hasXwayland });
        ASSERT_TRUE(m_desktop);
        const auto bus = test::PrivateBus::start();
        ASSERT_TRUE(bus);
        test::ScopedEnvironment variables;
        variables.set("DBUS_SESSION_BUS_ADDRESS", QString::fromLatin1(bus->address()));
        m_knowsXServer = hasXwayland;
        const Result result = record({ "--duration", "1" });
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(
            result.error.toStdString(),
            "vornic: This desktop has no screen cast portal, through which its screen could be recorded.\n");
        m_desktop.reset();
    }
}

TEST_F(RecordSwayEndsTest, ThePortalIsNotNeededAnyMore)
{
    startDesktop();
    ASSERT_NO_FATAL_FAILURE(beginRecording());
    m_portal->kill(Part::Portal);
    const std::size_t drawn = m_drawnAt.size();
    ASSERT_TRUE(showUntil(test::knownPicture(size), [&] { return m_drawnAt.size() > drawn + 30; }));
    m_process->terminate();
    const Result result = endRecording();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(sentencesIn(result.error), Sentences());
    expectMovieOfWhatWasShown();
    EXPECT_GE(numbersInMovie().back(), static_cast<int>(drawn)) << "what came later is in it, too";
}

/// Without each of these the pictures end.
class RecordSwayDeathTest : public RecordSwayEndsTest, public ::testing::WithParamInterface<Part>
{
};

TEST_P(RecordSwayDeathTest, LeavesAMovie)
{
    startDesktop();
    ASSERT_NO_FATAL_FAILURE(beginRecording());
    m_portal->kill(GetParam());
    const Result result = endRecording();
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_EQ(sentencesIn(result.error), displayIsGone);
    expectMovieOfWhatWasShown();
}

INSTANTIATE_TEST_SUITE_P(Parts,
                         RecordSwayDeathTest,
                         ::testing::Values(Part::PipeWire, Part::WirePlumber, Part::Backend),
                         [](const auto &part) {
                             return part.param == Part::PipeWire ? "PipeWire"
                                 : part.param == Part::Backend   ? "PortalsBackend"
                                                                 : "WirePlumber";
                         });

TEST_F(RecordSwayEndsTest, TheCompositorsDeathLeavesAMovie)
{
    startDesktop();
    ASSERT_NO_FATAL_FAILURE(beginRecording());
    m_desktop->kill();
    const Result result = endRecording();
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_EQ(sentencesIn(result.error), displayIsGone);
    expectMovieOfWhatWasShown();
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runSwayTests(argc, argv);
}
