#include "app/session/audio_device_list.h"
#include "app/session/audio_input.h"
#include "app/session/bare_session_fixture.h"
#include "app/session/disk_watch.h"
#include "app/session/new_movie_file.h"
#include "base/PKTimebase.h"
#include "base/log.h"
#include "capture/spool/VNBufferMgr.h"
#include "capture/spool/recording_folder.h"
#include "movie_test_support.h"
#include "support/thread_limit.h"
#include "support/wait_until.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <new>
#include <thread>
#include <vector>

namespace vornic {
namespace {

using Phase = RecordingSession::Phase;
using test::waitUntil;

/// A session on a fake display of 320 x 200 and a clock that the test sets.
class RecordingSessionTest : public BareSessionTest
{
protected:
    void makeSession()
    {
        BareSessionTest::makeSession();
        QObject::connect(session.get(), &RecordingSession::clockTicked, session.get(), [this] {
            // A picture that stays would be one frame of the movie.
            QImage picture(display->mainDisplaySize(), QImage::Format_RGB32);
            picture.fill(QColor::fromHsv(static_cast<int>(timestamps.size() * 37 % 360), 255, 200));
            display->setPicture(picture);
        });
    }
    /// Starts, waits for that many frames, stops and waits for the movie.
    bool record(qsizetype frames)
    {
        session->recorded();
        if (!waitUntil([&] { return timestamps.size() >= frames; }))
            return false;
        session->stopRecord();
        return waitUntil([&] { return session->phase() == Phase::Idle; });
    }
};

TEST_F(RecordingSessionTest, FramesAreStampedByTheClockThatIsPassedIn)
{
    makeSession();
    ASSERT_TRUE(record(5));
    for (qsizetype i = 0; i < timestamps.size(); ++i)
        EXPECT_EQ(timestamps[i], i * PKTimebase / 4);
    EXPECT_EQ(testing::numbersOf(testing::probe(*frontEnd.path), "packets", "video", "pts"), timestamps);
}

TEST_F(RecordingSessionTest, EachRecordingHasAnOriginOfItsOwn)
{
    makeSession();
    ASSERT_TRUE(record(2));
    time = 5000;
    timestamps.clear();
    ASSERT_TRUE(record(2));
    EXPECT_EQ(timestamps.first(), 0);
}

TEST_F(RecordingSessionTest, TheFirstSoundIsTheOrigin)
{
    audioControl.names += "Microphone";
    makeSession();
    options.setEnableAudio(true);
    session->recorded();
    ASSERT_TRUE(waitUntil([&] { return audioControl.recorder && audioControl.recorder->startCount == 1; }));
    time = 1001;
    // 0.1 s of it: the first sample was captured that long before.
    const QByteArray samples(19'200, '\0');
    audioControl.recorder->deliver(samples.constData(), 19'200);
    ASSERT_TRUE(waitUntil([&] { return timestamps.size() >= 2; }));
    EXPECT_EQ(timestamps[0], PKTimebase / 10);
    EXPECT_EQ(timestamps[1], PKTimebase / 10 + PKTimebase / 4);
    // What comes later moves nothing.
    audioControl.recorder->deliver(samples.constData(), 19'200);
    const qsizetype before = timestamps.size();
    ASSERT_TRUE(waitUntil([&] { return timestamps.size() >= before + 2; }));
    for (qsizetype i = 0; i < timestamps.size(); ++i)
        EXPECT_EQ(timestamps[i], PKTimebase / 10 + i * PKTimebase / 4);
    session->stopRecord();
    ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
}

TEST_F(RecordingSessionTest, InputAndSystemAreOneSoundAtTheirLevels)
{
    audioControl.names += "Microphone";
    makeSession();
    options.setEnableAudio(true);
    options.setRecordsSystemSound(true);
    options.setInputLevel(150);
    options.setSystemLevel(50);
    session->recorded();
    const QList<FakeAudioRecorder *> &recorders = audioControl.recorders;
    ASSERT_TRUE(waitUntil([&] { return recorders.size() == 2 && recorders.last()->startCount == 1; }));
    EXPECT_EQ(recorders[0]->deviceID, 11U);
    EXPECT_EQ(recorders[1]->deviceID, AudioControl::systemSoundID);
    EXPECT_EQ(recorders[0]->startCount, 1);
    // As recorders begin: 20 ms of silence that end now.
    const QByteArray leadIn(3840, '\0');
    for (FakeAudioRecorder *recorder : recorders)
        recorder->deliver(leadIn.constData(), 3840);
    // A second of one value: 150 % of it and half of it are twice as much.
    const std::vector<std::int16_t> samples(96'000, 5000);
    for (FakeAudioRecorder *recorder : recorders)
        recorder->deliver(samples.data(), 192'000);
    // So much of both is in the movie: 20 chunks of 40 ms.
    ASSERT_TRUE(waitUntil([&] {
        return frontEnd.levels.size() >= 20 && !timestamps.isEmpty()
            && timestamps.last() >= PKTimebase * 7 / 10;
    }));
    session->stopRecord();
    ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
    const std::vector<std::int16_t> heard = testing::decodedSound(*frontEnd.path);
    ASSERT_GT(heard.size(), 60'000U);
    EXPECT_NEAR(heard[48'000], 10'000, 300);
}

TEST_F(RecordingSessionTest, TheLevelIsToldAndAMicrophoneThatGivesNothingOnce)
{
    audioControl.names = QStringList { "Microphone", "Monitor of Speakers" };
    audioControl.monitors = { 12 };
    makeSession();
    options.setEnableAudio(true);
    const std::vector<std::int16_t> silence(96'000, 0);
    const std::vector<std::int16_t> loud(96'000, -16384);
    const QList<FakeAudioRecorder *> &recorders = audioControl.recorders;
    // The input alone, both sounds, and the input again, which is a monitor by then.
    for (const qsizetype input : { 0, 1, 0 }) {
        frontEnd.told.clear();
        frontEnd.levels.clear();
        timestamps.clear();
        const bool isMonitor = recorders.size() == 3;
        options.setRecordsSystemSound(input == 1);
        session->audioInput().devices().setIndexOfSelected(isMonitor ? 1 : 0);
        const int before = recorders.size() > input ? recorders[input]->startCount.load() : 0;
        session->recorded();
        ASSERT_TRUE(
            waitUntil([&] { return recorders.size() > input && recorders[input]->startCount > before; }));
        recorders[input]->deliver(silence.data(), 3840); // as a recorder begins
        recorders[input]->deliver(loud.data(), 192'000);
        for (int second = 0; second < 12; ++second)
            recorders[input]->deliver(silence.data(), 192'000);
        ASSERT_TRUE(waitUntil([&] { return frontEnd.levels.size() >= 13 && timestamps.size() > 1; }));
        EXPECT_NEAR(*std::ranges::max_element(frontEnd.levels), 0.5, 0.01);
        session->stopRecord();
        ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
        EXPECT_EQ(frontEnd.told.count("nothingIsHeard Microphone"), isMonitor ? 0 : 1) << input;
        EXPECT_EQ(frontEnd.told.count("nothingIsHeard Monitor of Speakers"), 0);
    }
}

TEST_F(RecordingSessionTest, OnlyWhatTheSystemPlaysIsRecordedWhereThatIsAskedFor)
{
    audioControl.names += "Microphone";
    makeSession();
    options.setEnableAudio(true);
    options.setRecordsSystemSound(true);
    session->wishes().usesInput = false;
    session->recorded();
    const QList<FakeAudioRecorder *> &recorders = audioControl.recorders;
    ASSERT_TRUE(waitUntil([&] { return recorders.size() == 2 && recorders.last()->startCount == 1; }));
    EXPECT_EQ(recorders[0]->startCount, 0) << "the microphone stays closed";
    session->stopRecord();
    ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
}

TEST_F(RecordingSessionTest, PhasesFollowEachOther)
{
    makeSession();
    QList<Phase> phases;
    QObject::connect(session.get(), &RecordingSession::stateChanged, [&] { phases += session->phase(); });
    frontEnd.onProgress = [&] { phases += session->phase(); };
    EXPECT_EQ(session->phase(), Phase::Idle);
    session->recorded();
    EXPECT_EQ(session->phase(), Phase::Asking);
    EXPECT_EQ(static_cast<int>(session->isRecording()), 0);
    ASSERT_TRUE(waitUntil([&] { return timestamps.size() >= 2; }));
    EXPECT_EQ(session->phase(), Phase::Capturing);
    EXPECT_EQ(static_cast<int>(session->isRecording()), 1);
    session->stopRecord();
    ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
    EXPECT_EQ(phases.first(), Phase::Capturing);
    EXPECT_TRUE(phases.contains(Phase::Writing));
    EXPECT_EQ(phases.last(), Phase::Idle);
}

/// A front end that keeps the save panel open until the test answers.
class PatientFrontEnd : public FakeFrontEnd
{
public:
    std::function<void(std::optional<QString>)> answerSavePanel;

    void runSavePanel(const QString &suggested,
                      const QString &type,
                      std::function<void(std::optional<QString>)> answer) override
    {
        told += "savePanel " + suggested + "." + type;
        answerSavePanel = std::move(answer);
    }
};

TEST_F(RecordingSessionTest, TheRecordButtonIsIgnoredWhileAQuestionStands)
{
    PatientFrontEnd patient;
    session = std::make_unique<RecordingSession>(patient.frontEnd(), options, nullptr);
    session->bufferMgr().setFreeSpaceProbe([] { return std::uint64_t { 100'000'000'000 }; });
    session->recorded();
    session->recorded();
    EXPECT_EQ(patient.told, QStringList { "savePanel Untitled.mp4" });
    patient.answerSavePanel(std::nullopt);
    EXPECT_EQ(session->phase(), Phase::Idle);
    session->recorded();
    EXPECT_EQ(patient.told.size(), 2);
}

TEST_F(RecordingSessionTest, ACountdownThatIsCancelledRecordsNothing)
{
    makeSession();
    frontEnd.countsToTheEnd = false;
    session->recorded();
    EXPECT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
    EXPECT_EQ(frontEnd.told, (QStringList { "savePanel Untitled.mp4", "hint", "countDown" }));
    EXPECT_FALSE(QFile::exists(*frontEnd.path));
}

/// One that is shown only to whom its user wants.
class GuardedDisplayTest : public RecordingSessionTest
{
protected:
    GuardedDisplayTest()
    {
        display->setAsksForAccess(true);
        makeSession();
    }
    ~GuardedDisplayTest() override
    {
        session.reset();
        EXPECT_FALSE(display->isClaimed()) << "whatever has happened";
    }

    bool runUntilAsked()
    {
        return waitUntil([&] { return display->isAsking(); });
    }
};

TEST_F(GuardedDisplayTest, IsAskedForBetweenTheHintAndTheCountdown)
{
    session->recorded();
    ASSERT_TRUE(runUntilAsked());
    EXPECT_EQ(frontEnd.told, (QStringList { "savePanel Untitled.mp4", "hint" }));
    EXPECT_TRUE(session->awaitsDisplay());
    EXPECT_EQ(session->phase(), Phase::Asking);
    display->answerAccess({});
    EXPECT_FALSE(session->awaitsDisplay());
    EXPECT_EQ(frontEnd.told.value(2), "countDown");
    EXPECT_EQ(session->phase(), Phase::Capturing);
}

TEST_F(GuardedDisplayTest, IsAskedForByARecordingWithoutQuestionsToo)
{
    session->recordNow(folder.filePath("now.mp4"));
    EXPECT_TRUE(display->isAsking());
    EXPECT_EQ(frontEnd.told, QStringList());
}

TEST_F(GuardedDisplayTest, IsReleasedOnceThePicturesAreTaken)
{
    session->recordNow(folder.filePath("now.mp4"));
    display->answerAccess({});
    ASSERT_TRUE(waitUntil([&] { return timestamps.size() >= 2; }));
    EXPECT_TRUE(display->isClaimed());
    session->stopRecord();
    ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Writing; }));
    EXPECT_FALSE(display->isClaimed());
    EXPECT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
}

TEST_F(GuardedDisplayTest, AUserWhoDeclinesIsToldNothing)
{
    session->recordNow(folder.filePath("now.mp4"));
    display->answerAccess({ DisplayAccess::State::Declined, {} });
    EXPECT_EQ(frontEnd.told, QStringList { "declined" });
    EXPECT_EQ(session->phase(), Phase::Idle);
    EXPECT_FALSE(display->isClaimed());
}

TEST_F(GuardedDisplayTest, WhyItCannotBeHadIsTold)
{
    session->recordNow(folder.filePath("now.mp4"));
    display->answerAccess({ DisplayAccess::State::Failed, "The screen is shy." });
    EXPECT_EQ(frontEnd.alerts, QStringList { "Error|The screen is shy." });
    EXPECT_EQ(session->phase(), Phase::Idle);
    EXPECT_FALSE(display->isClaimed());
}

TEST_F(GuardedDisplayTest, AStopGivesTheQuestionUp)
{
    session->recordNow(folder.filePath("now.mp4"));
    session->stopRecord();
    EXPECT_EQ(session->phase(), Phase::Idle);
    EXPECT_FALSE(display->isClaimed());
    EXPECT_EQ(frontEnd.told, QStringList());
    session->recordNow(folder.filePath("now.mp4"));
    EXPECT_TRUE(display->isAsking()) << "another one may begin";
}

TEST_F(GuardedDisplayTest, WhoQuitsWhileItIsAskedForNeedNotAnswer)
{
    bool isReady = false;
    QObject::connect(
        session.get(), &RecordingSession::readyToTerminate, session.get(), [&] { isReady = true; });
    session->recordNow(folder.filePath("now.mp4"));
    session->terminate();
    EXPECT_TRUE(isReady);
    EXPECT_FALSE(display->isClaimed());
}

TEST_F(GuardedDisplayTest, IsReleasedWhenTheCountdownIsCancelled)
{
    frontEnd.countsToTheEnd = false;
    session->recordNow(folder.filePath("now.mp4"));
    display->answerAccess({});
    EXPECT_EQ(session->phase(), Phase::Idle);
    EXPECT_FALSE(display->isClaimed());
}

TEST_F(RecordingSessionTest, RecordingNowAsksNothing)
{
    makeSession();
    session->recordNow(folder.filePath("now.mp4"));
    EXPECT_EQ(session->phase(), Phase::Capturing);
    EXPECT_EQ(frontEnd.told.mid(0, 2), (QStringList { "countDown", "showStopItem" }));
    ASSERT_TRUE(waitUntil([&] { return timestamps.size() >= 2; }));
    session->recordNow(folder.filePath("other.mp4"));
    session->stopRecord();
    ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
    EXPECT_EQ(session->recording().path, folder.filePath("now.mp4"));
    EXPECT_TRUE(QFile::exists(folder.filePath("now.mp4")));
    EXPECT_FALSE(QFile::exists(folder.filePath("other.mp4"))) << "it is ignored while recording";
}

TEST_F(RecordingSessionTest, RecordingNowAsksWhereSpaceIsLow)
{
    makeSession();
    session->bufferMgr().setFreeSpaceProbe([] { return std::uint64_t { 5'000'000'000 }; });
    frontEnd.goesOn = false;
    session->recordNow(folder.filePath("now.mp4"));
    EXPECT_EQ(frontEnd.told, QStringList { "freeSpace" });
    EXPECT_EQ(session->phase(), Phase::Idle);
}

/// Puts a file at \a path, whose contents are "dear".
void putFile(const QString &path)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("dear");
}

TEST_F(RecordingSessionTest, AFileThatComesWhileItRecordsIsKept)
{
    makeSession();
    session->recordNow(folder.filePath("now.mp4"));
    ASSERT_TRUE(waitUntil([&] { return timestamps.size() >= 2; }));
    putFile(folder.filePath("now.mp4"));
    session->stopRecord();
    ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
    EXPECT_EQ(session->recording().path, folder.filePath("now 2.mp4"));
    EXPECT_GT(QFileInfo(folder.filePath("now 2.mp4")).size(), 500);
    EXPECT_EQ(QFileInfo(folder.filePath("now.mp4")).size(), 4);
    EXPECT_TRUE(
        frontEnd.told.contains("renamed " + folder.filePath("now.mp4") + " " + folder.filePath("now 2.mp4")))
        << frontEnd.told.join('\n').toStdString();
    EXPECT_TRUE(frontEnd.told.contains("announce " + folder.filePath("now 2.mp4")));
}

TEST_F(RecordingSessionTest, AFileThatComesAfterTheQuestionsIsKept)
{
    makeSession();
    frontEnd.holdsScreen = true;
    session->recorded();
    ASSERT_TRUE(waitUntil([&] { return static_cast<bool>(frontEnd.screenIsClear); }));
    putFile(folder.filePath("movie.mp4"));
    frontEnd.screenIsClear();
    ASSERT_TRUE(waitUntil([&] { return timestamps.size() >= 2; }));
    session->stopRecord();
    ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
    EXPECT_EQ(session->recording().path, folder.filePath("movie 2.mp4"));
    EXPECT_EQ(QFileInfo(folder.filePath("movie.mp4")).size(), 4);
}

TEST_F(RecordingSessionTest, RecordingNowReplacesNoFile)
{
    makeSession();
    const QString path = folder.filePath("now.mp4");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("dear");
    file.close();
    session->recordNow(path);
    EXPECT_EQ(session->phase(), Phase::Idle);
    EXPECT_EQ(frontEnd.alerts, QStringList { "Error|The file " + path + " exists already." });
    EXPECT_EQ(QFileInfo(path).size(), 4);
}

TEST_F(RecordingSessionTest, WithoutAnInputItAsksWhetherToRecordWithoutSound)
{
    makeSession(); // which switches sound off, as there is no device
    options.setEnableAudio(true);
    frontEnd.recordsWithoutSound = false;
    session->recorded();
    EXPECT_EQ(frontEnd.told, QStringList { "withoutSound" });
    EXPECT_EQ(session->phase(), Phase::Idle);

    frontEnd.recordsWithoutSound = true;
    ASSERT_TRUE(record(2));
    EXPECT_TRUE(testing::streamOf(testing::probe(*frontEnd.path), "audio").isEmpty());
    EXPECT_TRUE(options.enableAudio()) << "the next recording may have an input again";
}

TEST_F(RecordingSessionTest, WhereNoSoundComesTheUserMayGoOnWithout)
{
    audioControl.names += "Microphone";
    makeSession();
    options.setEnableAudio(true);
    session->recorded();
    ASSERT_TRUE(waitUntil([&] { return frontEnd.told.contains("soundIsMissing"); }));
    EXPECT_TRUE(timestamps.isEmpty());
    time = 1010;
    frontEnd.goOnWithoutSound();
    ASSERT_TRUE(waitUntil([&] { return timestamps.size() >= 3; }));
    EXPECT_EQ(timestamps[0], 0) << "timestamps count from the click";
    frontEnd.goOnWithoutSound();
    const QByteArray samples(19'200, 'a');
    audioControl.recorder->deliver(samples.constData(), 19'200);
    session->stopRecord();
    ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
    const QJsonObject movie = testing::probe(*frontEnd.path);
    EXPECT_EQ(testing::numbersOf(movie, "packets", "video", "pts"), timestamps);
    EXPECT_TRUE(testing::streamOf(movie, "audio").isEmpty());
    frontEnd.goOnWithoutSound(); // of a recording that is over
    EXPECT_EQ(session->phase(), Phase::Idle);
}

TEST_F(RecordingSessionTest, WhoseTimeIsOverBeforeSoundComesHoldsAPictureWithoutSound)
{
    audioControl.names += "Microphone";
    makeSession();
    options.setEnableAudio(true);
    session->recorded();
    ASSERT_TRUE(waitUntil([&] { return audioControl.recorder && audioControl.recorder->startCount == 1; }));
    EXPECT_TRUE(session->recording().clock.awaitsSound());
    session->stopRecord();
    EXPECT_FALSE(session->recording().clock.awaitsSound());
    ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
    EXPECT_EQ(session->recording().failure, "");
    EXPECT_EQ(session->counts().framesWritten, 1U);
    EXPECT_TRUE(testing::streamOf(testing::probe(*frontEnd.path), "audio").isEmpty());
}

TEST_F(RecordingSessionTest, OneThatHasPicturesEndsWithThemWhenItsTimeIsOver)
{
    makeSession();
    session->recorded();
    ASSERT_TRUE(waitUntil([&] { return session->counts().framesGrabbed >= 3; }));
    session->stopRecord();
    ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
    EXPECT_GE(session->counts().framesWritten, 3U);
}

TEST_F(RecordingSessionTest, WhoLeavesFindsTheRecordingAgain)
{
    makeSession();
    int ready = 0;
    QObject::connect(session.get(), &RecordingSession::readyToTerminate, [&ready] { ++ready; });
    session->recorded();
    ASSERT_TRUE(waitUntil([&] { return session->counts().framesGrabbed >= 3; }));
    const QString id = session->bufferMgr().recordingId();
    session->leave();
    ASSERT_TRUE(waitUntil([&] { return ready == 1; }));
    EXPECT_EQ(session->phase(), Phase::Idle);
    EXPECT_EQ(frontEnd.kept, QStringList { id });
    EXPECT_FALSE(frontEnd.told.contains("beginProgress")) << "no movie is begun";
    EXPECT_TRUE(frontEnd.alerts.isEmpty());
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList());
    session->recover(id, *frontEnd.path);
    ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
    EXPECT_GE(session->counts().framesWritten, 3U);
}

TEST_F(RecordingSessionTest, AStopWhileSoundIsAwaitedKeepsAPictureAllTheSame)
{
    audioControl.names += "Microphone";
    makeSession();
    options.setEnableAudio(true);
    session->recorded();
    ASSERT_TRUE(waitUntil([&] { return audioControl.recorder && audioControl.recorder->startCount == 1; }));
    session->stopRecord();
    ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
    EXPECT_TRUE(session->recording().failure.isEmpty()) << session->recording().failure.toStdString();
    EXPECT_TRUE(frontEnd.alerts.isEmpty());
    const QJsonObject movie = testing::probe(*frontEnd.path);
    EXPECT_EQ(testing::numbersOf(movie, "packets", "video", "pts"), QList<qint64> { 0 });
    EXPECT_TRUE(testing::streamOf(movie, "audio").isEmpty());
    EXPECT_EQ(session->counts().audioSeconds, 0) << "by which whoever asked for sound is told";
    EXPECT_EQ(frontEnd.announcedFlaws, "No sound came: the movie has none.");
}

TEST_F(RecordingSessionTest, AStopRightBehindGoingOnWithoutSoundKeepsAPicture)
{
    audioControl.names += "Microphone";
    makeSession();
    options.setEnableAudio(true);
    session->recorded();
    ASSERT_TRUE(waitUntil([&] { return frontEnd.told.contains("soundIsMissing"); }));
    frontEnd.goOnWithoutSound();
    session->stopRecord();
    ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
    EXPECT_EQ(session->recording().failure, "");
    EXPECT_EQ(session->counts().framesWritten, 1U);
}

TEST_F(RecordingSessionTest, WhoQuitsWhileSoundIsAwaitedFindsAPicture)
{
    audioControl.names += "Microphone";
    makeSession();
    int ready = 0;
    QObject::connect(session.get(), &RecordingSession::readyToTerminate, [&ready] { ++ready; });
    options.setEnableAudio(true);
    session->recorded();
    ASSERT_TRUE(waitUntil([&] { return audioControl.recorder && audioControl.recorder->startCount == 1; }));
    EXPECT_TRUE(session->mayQuit());
    session->terminate(); // the window has closed
    ASSERT_TRUE(waitUntil([&] { return ready == 1; }));
    EXPECT_EQ(session->recording().failure, "");
    EXPECT_TRUE(frontEnd.alerts.isEmpty());
    EXPECT_EQ(session->counts().framesWritten, 1U);
}

TEST_F(RecordingSessionTest, ARecordingThatIsStoppedBeforeScreenAndSoundAreThereEnds)
{
    audioControl.names += "Microphone";
    makeSession();
    options.setEnableAudio(true);
    frontEnd.holdsScreen = true;
    session->recorded();
    ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Capturing; }));
    session->stopRecord();
    ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
    EXPECT_EQ(session->counts().framesWritten, 1U);
}

TEST_F(RecordingSessionTest, SoundThatIsLostAndComesBackIsToldAtOnceAndAtTheEnd)
{
    audioControl.names += "Microphone";
    makeSession();
    options.setEnableAudio(true);
    for (const bool isLost : { true, false }) {
        frontEnd.told.clear();
        timestamps.clear();
        session->recorded();
        ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Capturing && audioControl.recorder; }));
        const QByteArray samples(19'200, 'a');
        audioControl.recorder->deliver(samples.constData(), 19'200);
        ASSERT_TRUE(waitUntil([&] { return !timestamps.isEmpty(); }));
        if (isLost) {
            audioControl.recorder->lose();
            ASSERT_TRUE(waitUntil([&] { return frontEnd.told.contains("soundIsLost"); }));
            EXPECT_FALSE(frontEnd.told.contains("soundIsBack"));
            audioControl.recorder->comeBack();
            ASSERT_TRUE(waitUntil([&] { return frontEnd.told.contains("soundIsBack"); }));
        }
        session->stopRecord();
        ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
        EXPECT_EQ(frontEnd.announcedFlaws.contains("was gone"), isLost)
            << frontEnd.announcedFlaws.toStdString();
        audioControl.recorder->lose(); // of a recording that is over
        QCoreApplication::processEvents();
        EXPECT_EQ(frontEnd.told.count("soundIsLost"), isLost ? 1 : 0);
    }
    EXPECT_EQ(frontEnd.announcedFlaws, QString());
}

TEST_F(RecordingSessionTest, OneOfTwoSoundsThatIsLostIsToldByItsName)
{
    audioControl.names += "Microphone";
    makeSession();
    options.setEnableAudio(true);
    options.setRecordsSystemSound(true);
    const QList<FakeAudioRecorder *> &recorders = audioControl.recorders;
    const QStringList names { "Microphone", "What the system plays" };
    for (const qsizetype lost : { 0, 1 }) {
        frontEnd.told.clear();
        timestamps.clear();
        session->recorded();
        ASSERT_TRUE(waitUntil([&] { return recorders.size() == 2 && recorders[1]->startCount > lost; }));
        const QByteArray samples(3840, 'a');
        for (FakeAudioRecorder *recorder : recorders)
            recorder->deliver(samples.constData(), 3840);
        ASSERT_TRUE(waitUntil([&] { return !timestamps.isEmpty(); }));
        recorders[lost]->lose();
        ASSERT_TRUE(waitUntil([&] { return frontEnd.told.contains(names[lost] + " is lost"); }));
        recorders[lost]->comeBack();
        ASSERT_TRUE(waitUntil([&] { return frontEnd.told.contains(names[lost] + " is back"); }));
        EXPECT_FALSE(frontEnd.told.contains("soundIsLost")) << "the other is heard";
        session->stopRecord();
        ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
        EXPECT_TRUE(frontEnd.announcedFlaws.contains(names[lost])) << frontEnd.announcedFlaws.toStdString();
    }
}

TEST_F(RecordingSessionTest, AMovieThatIsTooLargeIsWrittenAgainAndThenLeft)
{
    makeSession();
    session->wishes().maxSize = 1000; // its index alone takes as much
    session->recorded();
    ASSERT_TRUE(waitUntil([&] { return !timestamps.isEmpty() && session->phase() == Phase::Idle; }));
    EXPECT_TRUE(session->recording().sizeIsReached);
    EXPECT_TRUE(session->recording().isTooLarge);
    EXPECT_EQ(frontEnd.told.count("sizeIsReached"), 1);
    EXPECT_EQ(frontEnd.told.count("movieIsWrittenAgain"), 2);
    EXPECT_EQ(session->recording().failure, QString());
    EXPECT_EQ(testing::numbersOf(testing::probe(*frontEnd.path), "packets", "video", "pts"), timestamps);

    timestamps.clear();
    frontEnd.told.clear();
    session->wishes().maxSize = 10'000'000;
    ASSERT_TRUE(record(3));
    EXPECT_FALSE(session->recording().sizeIsReached);
    EXPECT_FALSE(session->recording().isTooLarge);
    EXPECT_FALSE(frontEnd.told.contains("movieIsWrittenAgain"));
}

TEST_F(RecordingSessionTest, TheRoomOfEachRecordingIsToldAndWarnedOf)
{
    makeSession();
    step = 1;
    session->diskWatch().setProbe([](const QString & /*spool*/, const QString & /*movie*/) {
        return DiskSpace { .spoolFree = VNBufferMgr::limitSpaceForRecord() + 10'000,
                           .movieFree = 100'000'000'000 };
    });
    for (const int recordings : { 1, 2 }) {
        frontEnd.rooms.clear();
        timestamps.clear();
        session->recorded();
        ASSERT_TRUE(waitUntil([&] { return frontEnd.warnings.size() == recordings; }));
        EXPECT_EQ(frontEnd.warnings.last().folder, VNBufferMgr::cachePath());
        const qsizetype told = frontEnd.rooms.size();
        ASSERT_TRUE(waitUntil([&] { return frontEnd.rooms.size() >= told + 5; }));
        EXPECT_EQ(frontEnd.warnings.size(), recordings);
        EXPECT_GT(frontEnd.rooms.last().spooledBytes, frontEnd.rooms.first().spooledBytes);
        EXPECT_EQ(frontEnd.rooms.size(), timestamps.size() - 1) << "once a second, from the first one on";
        session->stopRecord();
        ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
    }
}

TEST_F(RecordingSessionTest, NoPictureIsTakenBeforeTheScreenIsClear)
{
    makeSession();
    frontEnd.holdsScreen = true;
    session->recordNow(folder.filePath("now.mp4"));
    ASSERT_TRUE(frontEnd.screenIsClear);
    EXPECT_FALSE(waitUntil([&] { return !timestamps.isEmpty(); }, std::chrono::milliseconds(200)));
    frontEnd.screenIsClear();
    ASSERT_TRUE(waitUntil([&] { return !timestamps.isEmpty(); }));
    EXPECT_EQ(timestamps[0], 0);
    session->stopRecord();
    ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
}

TEST_F(RecordingSessionTest, ARecordingThatEndsBeforeTheScreenIsClearEndsAllTheSame)
{
    makeSession();
    frontEnd.holdsScreen = true;
    session->recordNow(folder.filePath("now.mp4"));
    session->stopRecord();
    ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
    frontEnd.screenIsClear(); // too late
    EXPECT_EQ(session->phase(), Phase::Idle);
    EXPECT_TRUE(frontEnd.alerts.isEmpty());
    EXPECT_EQ(testing::numbersOf(testing::probe(folder.filePath("now.mp4")), "packets", "video", "pts"),
              QList<qint64> { 0 })
        << "one frame is a movie, none is a failure";
}

/// A fake display of 320 x 200 whose grabs find no memory any more, after the first few.
class DisplayWithoutMemory final : public DisplayBackend
{
public:
    explicit DisplayWithoutMemory(int grabs)
        : m_grabsLeft(grabs)
    {
    }

    [[nodiscard]] std::uint32_t mainDisplayId() const override { return m_display.mainDisplayId(); }
    [[nodiscard]] QSize mainDisplaySize() const override { return m_display.mainDisplaySize(); }
    [[nodiscard]] std::shared_ptr<const BitmapImage> grab(const QRect &rectangle) override
    {
        if (m_grabsLeft-- <= 0)
            throw std::bad_alloc();
        return m_display.grab(rectangle);
    }
    [[nodiscard]] QPoint pointerPosition() override { return m_display.pointerPosition(); }
    [[nodiscard]] std::shared_ptr<const CursorShape> cursorShape() override
    {
        return m_display.cursorShape();
    }

private:
    FakeDisplay m_display { QSize(320, 200) };
    std::atomic<int> m_grabsLeft;
};

TEST_F(RecordingSessionTest, APassWithoutMemoryEndsTheRecordingAndWhatIsSpooledIsTheMovie)
{
    QStringList logged;
    setLogSink([&](const QString &line) { logged += line; });
    setMainDisplay(std::make_shared<DisplayWithoutMemory>(3));
    makeSession();
    session->recordNow(folder.filePath("now.mp4"));
    EXPECT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
    const std::uint64_t written = session->counts().framesWritten;
    session.reset();
    setLogSink({});
    EXPECT_EQ(logged,
              QStringList {
                  "An error was not handled in the capture, which ends here: there is not enough memory" });
    EXPECT_EQ(written, 3U);
    EXPECT_TRUE(QFile::exists(folder.filePath("now.mp4")));
}

TEST_F(RecordingSessionTest, AMovieThatFindsNoThreadLeavesTheRecording)
{
    makeSession();
    session->recordNow(folder.filePath("now.mp4"));
    ASSERT_TRUE(waitUntil([&] { return timestamps.size() >= 3; }));
    {
        const test::ThreadLimit limit(0);
        session->stopRecord();
        ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
    }
    EXPECT_EQ(frontEnd.alerts,
              QStringList { "Error|The movie could not be written to " + folder.filePath("now.mp4")
                            + ": Resource temporarily unavailable." });
    const QStringList kept = RecordingFolder::ids(VNBufferMgr::cachePath());
    ASSERT_EQ(kept.size(), 1);
    session->recover(kept.first(), folder.filePath("later.mp4"));
    ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
    EXPECT_TRUE(QFile::exists(folder.filePath("later.mp4")));
}

TEST_F(RecordingSessionTest, ARecordingThatIsLeftIsOnTheDiskForAnotherProcess)
{
    makeSession();
    session->recorded();
    ASSERT_TRUE(waitUntil([&] { return timestamps.size() >= 3; }));
    const std::uint64_t frames = session->counts().framesGrabbed;
    const QString id = session->leaveRecording();
    VNBufferMgr other(4);
    QString whyNot;
    ASSERT_TRUE(other.openRecording(id, whyNot)) << qPrintable(whyNot);
    EXPECT_GE(other.recordBufferCount(), frames);
    EXPECT_FALSE(QFile::exists(*frontEnd.path));
}

TEST_F(RecordingSessionTest, AMovieThatIsWrittenWhenTheProcessEndsIsNotTakenForWhole)
{
    constexpr std::uint64_t frames = 60;
    makeSession();
    frontEnd.onProgress = [this] {
        frontEnd.onProgress = nullptr;
        // Until the encoder has had some of them, and not by far all.
        while (session->bufferMgr().recordBufferCount() > frames - 10)
            std::this_thread::yield();
        const QString id = session->leaveRecording();
        EXPECT_FALSE(id.isEmpty());
    };
    session->recorded();
    ASSERT_TRUE(waitUntil([&] { return session->counts().framesGrabbed >= frames; }));
    session->stopRecord();
    ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
    EXPECT_FALSE(QFile::exists(*frontEnd.path)) << "its spool was closed under it";
}

TEST_F(RecordingSessionTest, AMovieThatWasWrittenIsNotMadeAgainWhenTheProcessEndsBeforeItHearsOfIt)
{
    makeSession();
    frontEnd.onProgress = [this] {
        frontEnd.onProgress = nullptr;
        while (!QFile::exists(*frontEnd.path))
            std::this_thread::yield();
        EXPECT_EQ(session->leaveRecording(), QString());
        EXPECT_EQ(RecordingFolder::ids(VNBufferMgr::cachePath()), QStringList());
    };
    session->recorded();
    ASSERT_TRUE(waitUntil([&] { return timestamps.size() >= 3; }));
    session->stopRecord();
    ASSERT_TRUE(waitUntil([&] { return session->phase() == Phase::Idle; }));
    EXPECT_TRUE(QFile::exists(*frontEnd.path));
}

TEST_F(RecordingSessionTest, WithoutARecordingNothingIsLeft)
{
    makeSession();
    EXPECT_EQ(session->leaveRecording(), QString());
    ASSERT_TRUE(record(1));
    EXPECT_EQ(session->leaveRecording(), QString());
}

TEST(NewMovieFile, IsNamedAfterTheTimeInTheFolderOfMovies)
{
    const QTemporaryDir home;
    qputenv("HOME", home.path().toUtf8());
    qputenv("XDG_CONFIG_HOME", home.filePath("config").toUtf8());
    const QDateTime time(QDate(2026, 3, 1), QTime(14, 5, 9));
    const QString name = "Recording 2026-03-01 14-05-09";
    EXPECT_EQ(newMovieFile(time), home.filePath(name + ".mp4")) << "there is no folder of movies";
    ASSERT_TRUE(QDir(home.path()).mkdir("Videos"));
    EXPECT_EQ(newMovieFile(time), home.filePath("Videos/" + name + ".mp4"));
    for (const QString &number : { QString(), QString(" 2") }) {
        QFile taken(home.filePath("Videos/" + name + number + ".mp4"));
        ASSERT_TRUE(taken.open(QIODevice::WriteOnly));
    }
    EXPECT_EQ(newMovieFile(time), home.filePath("Videos/" + name + " 3.mp4"));
}

} // namespace
} // namespace vornic
