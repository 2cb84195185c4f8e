#include "app/window/alert_box.h"
#include "app/window/main_window_link.h"
#include "app/window/recovery.h"
#include "app/window/status_line.h"
#include "app/window/unfinished_line.h"
#include "app/window/window_questions.h"
#include "base/user_defaults.h"
#include "main_window_test.h"
#include "stored_recording_maker.h"
#include "support/wait_until.h"

#include <QAccessible>
#include <QAction>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>
#include <QWindow>
#include <QtTest>

namespace vornic {
namespace {

using test::waitUntil;

/// The main window with recordings that were not finished.
class RecoveryTest : public MainWindowTest
{
protected:
    RecoveryTest()
    {
        test::removeAllRecordings();
        delegate.bufferMgr().setFreeSpaceProbe([] { return 100'000'000'000ULL; });
        link.window = window.get();
    }
    ~RecoveryTest() override
    {
        recovery.reset();
        test::removeAllRecordings();
        user_defaults::remove("com.kavlor.movieFolder");
    }

    /// Looks for recordings, as the program does at its start.
    void start()
    {
        recovery = std::make_unique<Recovery>(delegate, questions, *window);
        const QSignalSpy changed(&recovery->recordings(), &UnfinishedRecordings::changed);
        recovery->start();
        ASSERT_TRUE(waitUntil([&] { return !changed.isEmpty(); }));
    }
    UnfinishedLine &line() { return window->unfinishedLine(); }
    QPushButton &button(const char *name) { return control<QPushButton>(name); }
    QDialog *sheet()
    {
        for (QDialog *dialog : window->findChildren<QDialog *>()) {
            if (dialog->isVisible() && dialog->findChild<QListWidget *>("list"))
                return dialog;
        }
        return nullptr;
    }
    QListWidget &list() { return *sheet()->findChild<QListWidget *>("list"); }
    QPushButton &sheetButton(const char *name) { return *sheet()->findChild<QPushButton *>(name); }
    QFileDialog *panel()
    {
        for (QFileDialog *dialog : window->findChildren<QFileDialog *>()) {
            if (dialog->isVisible())
                return dialog;
        }
        return nullptr;
    }
    bool isGone(const QString &id)
    {
        return waitUntil([&] { return !QDir(test::recordingsFolder() + "/" + id).exists(); });
    }
    /// Answers the question that \a ask blocks with, by pressing its button \a text.
    static void answer(const QString &text, const std::function<void()> &ask)
    {
        bool wasAsked = false;
        QTimer timer;
        timer.setSingleShot(true);
        QObject::connect(&timer, &QTimer::timeout, [&] {
            auto *box = qobject_cast<AlertBox *>(QApplication::activeModalWidget());
            ASSERT_TRUE(box);
            wasAsked = true;
            for (QPushButton *button : box->findChildren<QPushButton *>()) {
                EXPECT_EQ(button->isDefault(), button->text() == "Keep") << button->text().toStdString();
                if (button->text() == text)
                    button->click();
            }
        });
        timer.start(0);
        ask();
        EXPECT_TRUE(wasAsked);
    }

    QTemporaryDir folder;
    MainWindowLink link;
    WindowQuestions questions { link };
    std::unique_ptr<Recovery> recovery;
};

TEST_F(RecoveryTest, WithoutRecordingsThereIsNothing)
{
    const QSize size = window->size();
    start();
    EXPECT_FALSE(line().isVisible());
    EXPECT_EQ(window->size(), size);
    EXPECT_FALSE(control<QAction>("mUnfinished").isEnabled());
}

TEST_F(RecoveryTest, OneIsToldWithItsPictureUntilItIsKept)
{
    const QSize without = window->size();
    test::storeRecording(folder.filePath("talk.mp4"), 70);
    start();
    EXPECT_TRUE(line().isVisible());
    EXPECT_TRUE(line().text().startsWith("A recording of 1:10 from ")) << line().text().toStdString();
    EXPECT_EQ(
        QAccessible::queryAccessibleInterface(&control<QLabel>("unfinishedLabel"))->text(QAccessible::Name),
        line().text());
    for (const char *name : { "makeMovieButton", "keepUnfinishedButton", "deleteUnfinishedButton" })
        EXPECT_TRUE(button(name).isVisible() && button(name).isEnabled()
                    && !button(name).toolTip().isEmpty());
    EXPECT_FALSE(button("showUnfinishedButton").isVisible());
    EXPECT_FALSE(QApplication::activeModalWidget()) << "it does not ask";
    auto &picture = control<QLabel>("unfinishedPicture");
    EXPECT_TRUE(waitUntil([&] {
        const QImage shown = picture.pixmap(Qt::ReturnByValue).toImage();
        return shown.pixelColor(shown.rect().center()).blue() > 200;
    }));
    const QSize with = window->size();
    EXPECT_EQ(with.width(), without.width());
    EXPECT_GT(with.height(), without.height());

    QTest::keyClick(&button("keepUnfinishedButton"), Qt::Key_Space);
    EXPECT_FALSE(line().isVisible());
    QCoreApplication::processEvents();
    EXPECT_EQ(window->size(), without) << "no empty band";
    EXPECT_TRUE(control<QAction>("mUnfinished").isEnabled()) << "the way back";
    control<QAction>("mUnfinished").trigger();
    ASSERT_TRUE(sheet());
    EXPECT_EQ(list().count(), 1);
    sheetButton("keepButton").click();
    EXPECT_FALSE(sheet());
    // Another is told of.
    recovery->recordingKept();
    EXPECT_TRUE(waitUntil([&] { return line().isVisible(); }));
}

TEST_F(RecoveryTest, ItsMovieIsMadeWhereThePanelSays)
{
    const QString id = test::storeRecording(folder.filePath("talk.mp4"), 2);
    QFile taken(folder.filePath("talk.mp4"));
    ASSERT_TRUE(taken.open(QIODevice::WriteOnly));
    start();
    QTest::keyClick(&button("makeMovieButton"), Qt::Key_Return);
    ASSERT_TRUE(panel());
    EXPECT_EQ(panel()->directory().absolutePath(), folder.path());
    EXPECT_EQ(panel()->findChild<QLineEdit *>()->text(), QString("talk 2"));
    panel()->reject();
    EXPECT_TRUE(line().isVisible());
    EXPECT_EQ(delegate.state(), 0);

    button("makeMovieButton").click();
    QTest::keyClick(panel(), Qt::Key_Return);
    const QString movie = folder.filePath("talk 2.mp4");
    ASSERT_TRUE(waitUntil([&] { return frontEnd.told.contains("announce " + movie); }))
        << frontEnd.alerts.join('\n').toStdString();
    EXPECT_TRUE(QFile::exists(movie));
    EXPECT_TRUE(isGone(id));
    EXPECT_FALSE(line().isVisible());
    EXPECT_TRUE(waitUntil([&] { return !control<QAction>("mUnfinished").isEnabled(); }));
}

TEST_F(RecoveryTest, AMovieThatCannotBeWrittenLeavesItTold)
{
    const QString id = test::storeRecording(folder.filePath("talk.mp4"), 2);
    start();
    button("makeMovieButton").click();
    {
        // Another program is quicker.
        VNBufferMgr other(4);
        QString whyNot;
        ASSERT_TRUE(other.openRecording(id, whyNot));
        QTest::keyClick(panel(), Qt::Key_Return);
        ASSERT_TRUE(waitUntil([&] { return !frontEnd.alerts.isEmpty(); }));
        EXPECT_TRUE(frontEnd.alerts.first().contains(id));
        other.keep();
    }
    EXPECT_FALSE(QFile::exists(folder.filePath("talk.mp4")));
    recovery->recordings().read();
    EXPECT_TRUE(waitUntil([&] { return line().isVisible(); }));
}

TEST_F(RecoveryTest, DeletingAsksFirst)
{
    const QString id = test::storeRecording(folder.filePath("talk.mp4"), 2);
    start();
    answer("Keep", [&] { button("deleteUnfinishedButton").click(); });
    EXPECT_TRUE(line().isVisible());
    EXPECT_TRUE(QDir(test::recordingsFolder() + "/" + id).exists());
    answer("Delete", [&] { button("deleteUnfinishedButton").click(); });
    EXPECT_TRUE(isGone(id));
    EXPECT_TRUE(waitUntil([&] { return !line().isVisible(); }));
}

TEST_F(RecoveryTest, OneThatCannotBeReadCanOnlyBeDeleted)
{
    const QString id = test::storeRecording(folder.filePath("talk.mp4"), 2);
    test::damageJournal(id);
    start();
    EXPECT_TRUE(line().text().contains("cannot be read")) << line().text().toStdString();
    EXPECT_FALSE(button("makeMovieButton").isVisible());
    control<QAction>("mUnfinished").trigger();
    EXPECT_FALSE(sheetButton("makeMovieButton").isEnabled());
    answer("Delete", [&] { sheetButton("deleteButton").click(); });
    EXPECT_TRUE(isGone(id));
    EXPECT_TRUE(waitUntil([&] { return !sheet(); })) << "an empty list is of no use";
}

TEST_F(RecoveryTest, SeveralAreListedAndChosenWithTheKeyboard)
{
    test::storeRecording(folder.filePath("a.mp4"), 1);
    const QString second = test::storeRecording(folder.filePath("b.mp4"), 2);
    test::storeRecording(folder.filePath("c.mp4"), 3);
    start();
    EXPECT_EQ(line().text(), "3 recordings were not finished.");
    EXPECT_FALSE(button("makeMovieButton").isVisible());
    EXPECT_FALSE(button("deleteUnfinishedButton").isVisible());
    QTest::keyClick(&button("showUnfinishedButton"), Qt::Key_Space);
    ASSERT_TRUE(sheet());
    EXPECT_EQ(list().count(), 3);
    EXPECT_EQ(sheet()->focusWidget(), &list());
    int row = 0;
    while (recovery->recordings().all().at(row).id != second)
        ++row;
    for (int i = 0; i < row; ++i)
        QTest::keyClick(&list(), Qt::Key_Down);
    EXPECT_TRUE(list().currentItem()->text().contains("0:02")) << list().currentItem()->text().toStdString();
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(&list());
    EXPECT_EQ(accessible->text(QAccessible::Name), "Unfinished recordings");
    EXPECT_TRUE(accessible->child(row)->text(QAccessible::Name).contains("0:02"));
    for (const char *name : { "makeMovieButton", "keepButton", "deleteButton" })
        EXPECT_FALSE(sheetButton(name).toolTip().isEmpty()) << name;

    answer("Delete", [&] { QTest::keyClick(&sheetButton("deleteButton"), Qt::Key_Space); });
    EXPECT_TRUE(isGone(second));
    ASSERT_TRUE(waitUntil([&] { return list().count() == 2; }));
    EXPECT_EQ(line().text(), "2 recordings were not finished.");
    // Enter makes the movie of what is chosen.
    list().setCurrentRow(0);
    QTest::keyClick(sheet(), Qt::Key_Return);
    ASSERT_TRUE(panel());
    EXPECT_FALSE(sheet());
    EXPECT_EQ(panel()->findChild<QLineEdit *>()->text().size(), 1);
    panel()->reject();
    control<QAction>("mUnfinished").trigger();
    QTest::keyClick(sheet(), Qt::Key_Escape);
    EXPECT_FALSE(sheet());
    EXPECT_EQ(recovery->recordings().all().size(), 2);
}

TEST_F(RecoveryTest, NothingIsDoneWithThemWhileAnotherRuns)
{
    test::storeRecording(folder.filePath("talk.mp4"), 2);
    start();
    frontEnd.path = folder.filePath("new.mp4");
    delegate.recorded();
    ASSERT_TRUE(waitUntil([&] { return delegate.session().isCapturing(); }));
    EXPECT_FALSE(button("makeMovieButton").isEnabled());
    EXPECT_FALSE(button("deleteUnfinishedButton").isEnabled());
    control<QAction>("mUnfinished").trigger();
    EXPECT_FALSE(sheetButton("makeMovieButton").isEnabled());
    EXPECT_FALSE(sheetButton("deleteButton").isEnabled());
    delegate.stopRecord();
    ASSERT_TRUE(waitUntil([&] { return delegate.state() == 0; }));
    EXPECT_TRUE(sheetButton("makeMovieButton").isEnabled());
    EXPECT_TRUE(button("makeMovieButton").isEnabled());
    EXPECT_TRUE(button("deleteUnfinishedButton").isEnabled());
}

TEST_F(RecoveryTest, AMovieThatIsPutOffIsToldOf)
{
    start();
    button("keepUnfinishedButton").click(); // of those before, which there are none of
    frontEnd.path = folder.filePath("new.mp4");
    frontEnd.onKept = [this] { recovery->recordingKept(); };
    delegate.recorded();
    ASSERT_TRUE(waitUntil([&] { return delegate.counts().framesGrabbed > 3; }));
    frontEnd.onProgress = [this] { delegate.session().later(); };
    delegate.stopRecord();
    ASSERT_TRUE(waitUntil([&] { return line().isVisible(); }));
    EXPECT_TRUE(frontEnd.alerts.isEmpty()) << frontEnd.alerts.join('\n').toStdString();
    EXPECT_EQ(delegate.state(), 0);
    EXPECT_EQ(frontEnd.told.filter("kept ").size(), 1);
    EXPECT_EQ(frontEnd.told.filter("kept ").first(), "kept " + line().id());
    EXPECT_TRUE(QDir(folder.path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    frontEnd.onProgress = {};
    button("makeMovieButton").click();
    QTest::keyClick(panel(), Qt::Key_Return);
    EXPECT_TRUE(waitUntil([&] { return frontEnd.told.contains("announce " + folder.filePath("new.mp4")); }));
}

TEST_F(RecoveryTest, TheWindowIsPlacedAgainWhenItGrows)
{
    // All that is left beneath it is recorded.
    constexpr int room = 30;
    ASSERT_TRUE(waitUntil([&] { return window->windowHandle()->isExposed(); }));
    window->move(0, 0);
    const int height = 900 - window->frameGeometry().bottom() - room;
    options().setSelectedRect({ 0, 0, 1440, static_cast<double>(height) });
    options().setRecordRegion(1);
    QCoreApplication::processEvents();
    ASSERT_EQ(options().selectedRect().height(), height);
    window->keepOffRecorded();
    EXPECT_EQ(control<StatusLine>("statusLine").text(), "");
    test::storeRecording(folder.filePath("talk.mp4"), 2);
    start();
    EXPECT_TRUE(control<StatusLine>("statusLine").text().startsWith("This window covers"));
}

TEST_F(RecoveryTest, OfManyOnlyThoseThatAreSeenAreLookedInto)
{
    const QString first = test::storeRecording(folder.filePath("a.mp4"), 1);
    for (int number = 1; number < 300; ++number)
        test::copyRecording(first, QStringLiteral("20990101-000000-%1").arg(number, 4, 16, QChar('0')));
    start();
    EXPECT_EQ(line().text(), "300 recordings were not finished.");
    const QSignalSpy pictures(&recovery->recordings(), &UnfinishedRecordings::pictureRead);
    button("showUnfinishedButton").click();
    ASSERT_EQ(list().count(), 300);
    recovery->recordings().askForPicture("the last");
    ASSERT_TRUE(waitUntil([&] { return !pictures.isEmpty() && pictures.last().first() == "the last"; }));
    EXPECT_GT(pictures.size(), 2);
    EXPECT_LT(pictures.size(), 12);
    QTest::keyClick(&list(), Qt::Key_End);
    EXPECT_TRUE(waitUntil([&] { return pictures.last().first() == "20990101-000000-012b"; }));
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runWindowTests(argc, argv);
}
