#include "client_process.h"
#include "desktop/reveal.h"
#include "support/fake_service.h"
#include "support/private_bus.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace vornic {

namespace {

using namespace test;

const QString service = QStringLiteral("org.freedesktop.FileManager1");

} // namespace

class Reveal : public testing::Test
{
protected:
    FolderOpener opener()
    {
        return [opened = m_opened](const QUrl &folder) { opened->push_back(folder); };
    }

    /// Also of a call that is answered after the test.
    std::shared_ptr<std::vector<QUrl>> m_opened = std::make_shared<std::vector<QUrl>>();
};

TEST_F(Reveal, ShowsTheFileInTheFileManager)
{
    FakeService manager(sessionBusDaemon(), service);
    manager.setAnswer([](const QDBusMessage &call) { return call.createReply(); });
    revealInFileManager("/home/anna/Videos/Untitled.mp4", "token-1", opener());
    ASSERT_TRUE(eventually([&] { return !manager.calls("ShowItems").empty(); }));
    const QDBusMessage call = manager.calls("ShowItems").front();
    EXPECT_EQ(call.path(), "/org/freedesktop/FileManager1");
    EXPECT_EQ(call.interface(), service);
    EXPECT_EQ(call.signature(), "ass");
    EXPECT_EQ(call.arguments().value(0).toStringList(),
              QStringList { "file:///home/anna/Videos/Untitled.mp4" });
    EXPECT_EQ(call.arguments().value(1), "token-1");
    ASSERT_TRUE(manager.settle(QDBusConnection::sessionBus()));
    EXPECT_TRUE(m_opened->empty());
}

TEST_F(Reveal, EncodesWhatMeansSomethingInAnAddress)
{
    FakeService manager(sessionBusDaemon(), service);
    revealInFileManager(QString::fromUtf8("/home/jürgen/My Movies/50% #1?.mp4"), {}, opener());
    ASSERT_TRUE(eventually([&] { return !manager.calls("ShowItems").empty(); }));
    EXPECT_EQ(manager.calls("ShowItems").front().arguments().value(0).toStringList(),
              QStringList { "file:///home/j%C3%BCrgen/My%20Movies/50%25%20%231%3F.mp4" });
}

TEST_F(Reveal, TakesARelativePathFromTheWorkingDirectory)
{
    FakeService manager(sessionBusDaemon(), service);
    revealInFileManager("Untitled.mp4", {}, opener());
    ASSERT_TRUE(eventually([&] { return !manager.calls("ShowItems").empty(); }));
    const QUrl shown(manager.calls("ShowItems").front().arguments().value(0).toStringList().value(0));
    EXPECT_EQ(shown.toLocalFile(), QDir::current().filePath("Untitled.mp4"));
}

TEST_F(Reveal, OpensTheFolderWithoutAFileManagerOnTheBus)
{
    revealInFileManager(QString::fromUtf8("/home/jürgen/My Movies/50% #1/film.mp4"), {}, opener());
    EXPECT_TRUE(m_opened->empty()) << "nothing is opened before the caller goes on";
    ASSERT_TRUE(eventually([&] { return !m_opened->empty(); }));
    EXPECT_EQ(m_opened->front(), QUrl::fromLocalFile(QString::fromUtf8("/home/jürgen/My Movies/50% #1")));
    EXPECT_EQ(m_opened->size(), 1U);
}

TEST_F(Reveal, OpensTheFolderWhenTheFileManagerRefuses)
{
    FakeService manager(sessionBusDaemon(), service);
    manager.setAnswer([](const QDBusMessage &call) {
        return call.createErrorReply(QDBusError::UnknownMethod, "Only folders");
    });
    revealInFileManager("/tmp/film.mp4", {}, opener());
    ASSERT_TRUE(eventually([&] { return !m_opened->empty(); }));
    EXPECT_EQ(m_opened->front().toLocalFile(), "/tmp");
}

TEST_F(Reveal, OpensTheFolderWhenTheFileManagerHangs)
{
    FakeService manager(sessionBusDaemon(), service);
    revealInFileManager("/tmp/film.mp4", {}, opener());
    ASSERT_TRUE(eventually([&] { return !m_opened->empty(); }));
    manager.send(manager.calls("ShowItems").front().createReply());
    ASSERT_TRUE(manager.settle(QDBusConnection::sessionBus()));
    EXPECT_EQ(m_opened->size(), 1U);
}

TEST_F(Reveal, OpensTheFolderWhenTheFileManagerEndsOverIt)
{
    auto manager = std::make_unique<FakeService>(sessionBusDaemon(), service);
    revealInFileManager("/tmp/film.mp4", {}, opener());
    ASSERT_TRUE(eventually([&] { return !manager->calls("ShowItems").empty(); }));
    manager.reset();
    ASSERT_TRUE(eventually([&] { return !m_opened->empty(); }));
    EXPECT_EQ(m_opened->front().toLocalFile(), "/tmp");
}

TEST_F(Reveal, StartsTheFileManager)
{
    const QTemporaryDir folder;
    const QString report = folder.filePath("report");
    sessionBusDaemon().addActivatable(service, { ClientProcess::program(), "file-manager", report });
    revealInFileManager("/tmp/film.mp4", {}, opener());
    EXPECT_TRUE(eventually([&] { return QFile::exists(report) && QFile(report).size() > 0; }));
    sessionBusDaemon().removeActivatable(service);
    QFile file(report);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "file:///tmp/film.mp4");
    EXPECT_TRUE(m_opened->empty());
}

TEST_F(Reveal, OpensTheFolderWithoutABus)
{
    const QTemporaryDir folder;
    ClientProcess client({ "reveal", "/tmp/film.mp4" },
                         { "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR=" + folder.path() });
    EXPECT_EQ(client.nextLine(), "opens file:///tmp");
}

} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::test::runBusTests(argc, argv);
}
