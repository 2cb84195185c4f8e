#include "app/window/VNHintWndCtroller.h"
#include "app/window/alert_box.h"
#include "app/window/main_window_link.h"
#include "app/window/movie_folder.h"
#include "app/window/window_questions.h"
#include "base/log.h"
#include "base/user_defaults.h"
#include "controls/push_button.h"
#include "window_main.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>
#include <QTimer>
#include <QtTest>

#include <algorithm>

namespace vornic {
namespace {

class QuestionsTest : public testing::Test
{
protected:
    ~QuestionsTest() override { user_defaults::remove("com.kavlor.movieFolder"); }

    static QFileDialog *panel()
    {
        for (QWidget *window : QApplication::topLevelWidgets()) {
            if (auto *found = qobject_cast<QFileDialog *>(window); found && found->isVisible())
                return found;
        }
        return nullptr;
    }
    static bool isHintShown()
    {
        const QWidgetList windows = QApplication::topLevelWidgets();
        return std::ranges::any_of(windows, [](const QWidget *window) {
            return window->isVisible() && window->findChild<QWidget *>("chkShowAgain");
        });
    }
    static void makeFile(const QString &path)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QFile::WriteOnly));
    }
    /// What the save panel proposes in the field for the name; the panel is closed.
    QString proposed(const QString &name)
    {
        questions.runSavePanel(name, "mp4", [](const auto &) {});
        const QString text = panel()->findChild<QLineEdit *>()->text();
        panel()->reject();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return text;
    }

    QTemporaryDir folder;
    MainWindowLink main;
    WindowQuestions questions { main };
};

TEST_F(QuestionsTest, TheFolderOfTheLastMovieIsRememberedAcrossStarts)
{
    const QString chosen = folder.filePath("movie.mp4");
    std::optional<QString> answer;
    questions.runSavePanel("Untitled", "mp4", [&](const auto &path) { answer = path; });
    ASSERT_TRUE(panel());
    panel()->selectFile(chosen);
    QTest::keyClick(panel(), Qt::Key_Return);
    EXPECT_EQ(answer, chosen);
    EXPECT_EQ(user_defaults::value("com.kavlor.movieFolder").toString(), folder.path());
    WindowQuestions(main).runSavePanel("Untitled", "mp4", [](const auto &) {});
    EXPECT_EQ(panel()->directory().absolutePath(), folder.path());
    panel()->reject();
}

TEST_F(QuestionsTest, AFolderThatIsGoneIsReplacedByTheUsual)
{
    const QString usual = movie_folder::current();
    EXPECT_TRUE(usual == QStandardPaths::writableLocation(QStandardPaths::MoviesLocation)
                || usual == QDir::homePath());
    movie_folder::setCurrent(folder.path());
    EXPECT_EQ(movie_folder::current(), folder.path());
    folder.remove();
    EXPECT_EQ(movie_folder::current(), usual);
}

TEST_F(QuestionsTest, TheProposedNameIsOneThatIsNotUsed)
{
    movie_folder::setCurrent(folder.path());
    EXPECT_EQ(proposed("Untitled"), "Untitled");
    makeFile(folder.filePath("Untitled.mp4"));
    EXPECT_EQ(proposed("Untitled"), "Untitled 2");
    makeFile(folder.filePath("Untitled 2.mp4"));
    EXPECT_EQ(proposed("Untitled"), "Untitled 3");
    QFile::link(folder.filePath("gone.mp4"), folder.filePath("Untitled 3.mp4"));
    EXPECT_EQ(proposed({}), "Untitled 4");
    EXPECT_EQ(proposed("Other"), "Other");
}

TEST_F(QuestionsTest, ANameGetsTheSuffixOfTheMoviesWhateverItHas)
{
    movie_folder::setCurrent(folder.path());
    for (const auto &[typed, file] : { std::pair("Talk v1.2", "Talk v1.2.mp4"),
                                       std::pair("talk.avi", "talk.avi.mp4"),
                                       std::pair("talk", "talk.mp4"),
                                       std::pair("talk.", "talk..mp4"),
                                       std::pair("Talk.MP4", "Talk.MP4") }) {
        std::optional<QString> answer;
        questions.runSavePanel("Untitled", "mp4", [&](const auto &path) { answer = path; });
        panel()->findChild<QLineEdit *>()->setText(typed);
        QTest::keyClick(panel(), Qt::Key_Return);
        EXPECT_EQ(answer, folder.filePath(file));
        if (panel())
            panel()->reject();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

TEST_F(QuestionsTest, TheFileThatWouldBeReplacedIsTheOneThatIsAskedAbout)
{
    movie_folder::setCurrent(folder.path());
    makeFile(folder.filePath("Talk v1.2.mp4"));
    std::optional<QString> answer;
    questions.runSavePanel("Untitled", "mp4", [&](const auto &path) { answer = path; });
    panel()->findChild<QLineEdit *>()->setText("Talk v1.2");
    QString asked;
    QTimer::singleShot(0, qApp, [&] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        ASSERT_TRUE(box) << "no question came";
        asked = box->text();
        box->button(QMessageBox::No)->click();
    });
    QTest::keyClick(panel(), Qt::Key_Return);
    EXPECT_TRUE(asked.contains("Talk v1.2.mp4")) << asked.toStdString();
    EXPECT_FALSE(answer);
    if (panel())
        panel()->reject();
}

TEST_F(QuestionsTest, TheNameOfAFolderLeadsIntoIt)
{
    movie_folder::setCurrent(folder.path());
    ASSERT_TRUE(QDir(folder.path()).mkdir("talks"));
    questions.runSavePanel("Untitled", "mp4", [](const auto &) {});
    panel()->findChild<QLineEdit *>()->setText("talks");
    QTest::keyClick(panel(), Qt::Key_Return);
    ASSERT_TRUE(panel());
    EXPECT_EQ(panel()->directory().absolutePath(), folder.filePath("talks"));
    if (panel())
        panel()->reject();
}

/// Runs \a ask, which shows a box, and \a look on the box.
template<typename Ask, typename Look>
void withBox(const Ask &ask, const Look &look)
{
    bool shown = false;
    QTimer::singleShot(0, qApp, [&] {
        auto *box = qobject_cast<AlertBox *>(QApplication::activeModalWidget());
        ASSERT_TRUE(box);
        shown = true;
        look(*box);
        if (box->isVisible())
            box->close();
    });
    ask();
    EXPECT_TRUE(shown);
}

TEST_F(QuestionsTest, AnErrorIsHeadedByWhatFailed)
{
    withBox([&] { questions.alertError("The movie cannot be written to /a/b.mp4: the disk is full."); },
            [](AlertBox &box) {
                EXPECT_EQ(box.windowTitle(), "The movie cannot be written to /a/b.mp4");
                QStringList headings;
                QStringList texts;
                for (QLabel *label : box.findChildren<QLabel *>())
                    (label->font().bold() ? headings : texts) += label->text().remove(QChar(0x2060));
                EXPECT_EQ(headings,
                          QStringList { "The movie cannot be written to /a/b.mp4: the disk is full." });
                EXPECT_TRUE(texts.contains("Error")) << "the message is there, too";
            });
    EXPECT_EQ(whatFailed("The recording holds no frames."), "The recording holds no frames");
}

TEST_F(QuestionsTest, AnAlertHasOneButtonWhichEveryKeyPresses)
{
    for (const Qt::Key key : { Qt::Key_Return, Qt::Key_Escape, Qt::Key_Space }) {
        withBox([&] { questions.alert("Disk free space is too low", "It stops."); },
                [key](AlertBox &box) {
                    EXPECT_EQ(box.findChildren<PushButton *>().size(), 1);
                    EXPECT_EQ(box.findChildren<QPushButton *>().size(), 1);
                    QTest::keyClick(box.focusWidget() ? box.focusWidget() : &box, key);
                    EXPECT_FALSE(box.isVisible()) << key;
                });
    }
}

TEST_F(QuestionsTest, WhatWasToldIsLeftBeforeAnythingFollowsIt)
{
    QStringList order;
    const auto tell = [&] {
        questions.alertError("The folder could not be shown.");
        order += "left";
    };
    withBox(tell, [&](const AlertBox & /*box*/) {
        EXPECT_TRUE(questions.onlyTells());
        questions.dismissTold([&] { order += "next"; });
        QCoreApplication::processEvents();
        EXPECT_TRUE(order.isEmpty()) << "who told it has not gone on";
    });
    QCoreApplication::processEvents();
    EXPECT_EQ(order, QStringList({ "left", "next" }));
    questions.dismissTold([&] { order += "at once"; });
    EXPECT_EQ(order.last(), "at once");
}

TEST_F(QuestionsTest, WhatIsWrongWithAFileIsPartOfTheQuestionForIt)
{
    EXPECT_TRUE(questions.onlyTells());
    questions.runSavePanel("Untitled", "mp4", [](const auto &) {});
    EXPECT_FALSE(questions.onlyTells());
    panel()->selectFile(folder.filePath(QString(300, 'x')));
    withBox(
        [] { static_cast<QDialog *>(panel())->done(QDialog::Accepted); },
        [&](const AlertBox & /*box*/) { EXPECT_FALSE(questions.onlyTells()) << "the panel comes again"; });
    panel()->reject();
    EXPECT_TRUE(questions.onlyTells());
}

TEST_F(QuestionsTest, WhatOnlyTellsCanBeTakenAsReadAndAQuestionStands)
{
    withBox([&] { questions.alertError("The folder could not be shown."); },
            [&](const AlertBox &box) {
                questions.dismissTold([] {});
                EXPECT_FALSE(box.isVisible());
            });
    withBox([&] { EXPECT_FALSE(questions.confirmQuit("Are you sure to quit it?", "It records.")); },
            [&](const AlertBox &box) {
                questions.dismissTold([] {});
                EXPECT_TRUE(box.isVisible());
            });
}

TEST_F(QuestionsTest, TheQuitQuestionIsAnsweredNoUnlessYesIsPressed)
{
    bool quits = true;
    const auto ask = [&] { quits = questions.confirmQuit("Are you sure to quit it?", "It records."); };
    withBox(ask, [](AlertBox &box) { QTest::keyClick(&box, Qt::Key_Return); });
    EXPECT_FALSE(quits);
    quits = true;
    withBox(ask, [](AlertBox &box) { QTest::keyClick(&box, Qt::Key_Escape); });
    EXPECT_FALSE(quits);
    quits = true;
    withBox(ask, [](AlertBox &box) { box.close(); });
    EXPECT_FALSE(quits);
    withBox(ask, [](AlertBox &box) {
        for (PushButton *button : box.findChildren<PushButton *>()) {
            EXPECT_EQ(button->isDefault(), button->text() == "No");
            if (button->text() == "Yes")
                button->click();
        }
    });
    EXPECT_TRUE(quits);
}

TEST_F(QuestionsTest, TheHintIsShownUnlessItIsSwitchedOff)
{
    VNHintWndCtroller &hint = VNHintWndCtroller::shareHintWndCtroller();
    QList<int> answers;
    const auto note = [&answers](int response) { answers += response; };
    hint.setShowAgain(false);
    questions.showHint(note);
    EXPECT_EQ(answers, QList<int> { RecordingQuestions::responseContinue });
    EXPECT_FALSE(isHintShown());
    hint.setShowAgain(true);
    questions.showHint(note);
    EXPECT_EQ(answers.size(), 1) << "it is asked";
    EXPECT_TRUE(isHintShown());
    hint.cancelAction();
    EXPECT_EQ(answers.last(), RecordingQuestions::responseStop);
    user_defaults::remove("VNShowHintWndAgain");
}

TEST_F(QuestionsTest, ARecordingWithoutAMovieIsKeptAndTheWayOnIsTold)
{
    int answers = 0;
    questions.askForOtherFile("mp4", [&](const auto &path) {
        ++answers;
        EXPECT_FALSE(path);
    });
    withBox([] { panel()->reject(); },
            [](AlertBox &box) {
                for (PushButton *button : box.findChildren<PushButton *>()) {
                    if (button->text() == "Save elsewhere")
                        button->click();
                }
            });
    EXPECT_EQ(answers, 0);
    ASSERT_TRUE(panel()) << "asked again";
    withBox([] { panel()->reject(); },
            [](AlertBox &box) {
                QString told;
                for (const QLabel *label : box.findChildren<QLabel *>())
                    told += label->text();
                EXPECT_TRUE(told.contains("kept") && told.contains("main window")) << told.toStdString();
                QTest::keyClick(&box, Qt::Key_Escape);
            });
    EXPECT_EQ(answers, 1);
}

TEST_F(QuestionsTest, WhatStandsIsDismissedAsIfItHadBeenLeft)
{
    const auto dismissed = [this](AlertBox &box) {
        questions.dismiss();
        EXPECT_FALSE(box.isVisible());
    };
    withBox([&] { questions.alert("Disk free space is too low", "It stops."); }, dismissed);
    withBox([&] { questions.alertError("The movie cannot be written."); }, dismissed);
    bool quits = true;
    withBox([&] { quits = questions.confirmQuit("Are you sure to quit it?", "It records."); }, dismissed);
    EXPECT_FALSE(quits);
    int answers = 0;
    questions.askForOtherFile("mp4", [&](const auto &path) {
        ++answers;
        EXPECT_FALSE(path);
    });
    ASSERT_TRUE(panel());
    withBox([&] { questions.dismiss(); }, dismissed); // the box that tells of the way on
    EXPECT_EQ(answers, 1);
    EXPECT_FALSE(panel());
}

/// Runs \a ask, and closes what it shows; how many boxes that were.
template<typename Ask>
int boxesShownBy(const Ask &ask)
{
    int boxes = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&boxes] {
        auto *box = qobject_cast<AlertBox *>(QApplication::activeModalWidget());
        if (!box)
            return;
        ++boxes;
        box->reject();
    });
    timer.start(0);
    ask();
    return boxes;
}

TEST_F(QuestionsTest, WhereNobodyAnswersNothingStandsAndWhatWasToBeToldIsLogged)
{
    QStringList logged;
    setLogSink([&](const QString &line) { logged += line; });
    int answers = 0;
    const auto count = [&](const auto &path) {
        ++answers;
        EXPECT_FALSE(path);
    };
    questions.askForOtherFile("mp4", count);
    ASSERT_TRUE(panel());
    EXPECT_EQ(boxesShownBy([&] { questions.end(); }), 0) << "the panel is left without a further question";
    EXPECT_EQ(answers, 1);
    EXPECT_EQ(boxesShownBy([&] {
                  questions.alert("Disk free space is too low", "It stops");
                  questions.alertError("The movie cannot be written.");
                  EXPECT_FALSE(questions.confirmQuit("Are you sure to quit it?", "It records."));
                  questions.askForOtherFile("mp4", count);
              }),
              0);
    EXPECT_EQ(answers, 2);
    EXPECT_FALSE(panel());
    EXPECT_EQ(logged,
              QStringList({ "Disk free space is too low. It stops.", "The movie cannot be written." }));
    setLogSink({});
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runWindowTests(argc, argv);
}
