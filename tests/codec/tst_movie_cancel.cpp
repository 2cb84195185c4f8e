#include "base/PKTimebase.h"
#include "codec/PKMuxerTask.h"
#include "codec/movie_failure.h"
#include "codec/movie_writer.h"
#include "movie_test_support.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>
#include <semaphore>
#include <stop_token>
#include <thread>

namespace vornic::testing {
namespace {

/// Never comes to an end. Each hook, where set, runs first inside its callback and is told which call it is, from 1.
class EndlessSource : public PKMuxerTaskDataSource
{
public:
    std::function<void(int call)> onVideo;
    std::function<void(int call)> onAudio;
    int videoFrames = -1; ///< no end

    [[nodiscard]] std::int64_t PKMuxerTaskLength() override { return 0; }
    [[nodiscard]] std::shared_ptr<const PKVideoFrame2> PKMuxerTaskGetVideoFrame() override
    {
        const int call = ++m_videoCalls;
        if (onVideo)
            onVideo(call);
        if (call - 1 == videoFrames)
            return nullptr;
        auto frame = std::make_shared<PKVideoFrame2>(flat({ 64, 48 }, QColor(call % 256, 0, 0)));
        frame->setTimeStamp(call * PKTimebase / 30);
        return frame;
    }
    [[nodiscard]] std::shared_ptr<const PKAudioFrame2> PKMuxerTaskGetAudioFrame() override
    {
        const int call = ++m_audioCalls;
        if (onAudio)
            onAudio(call);
        return std::make_shared<PKAudioFrame2>(1, 1, 48000, 4800, m_silence.data());
    }

private:
    std::vector<std::int16_t> m_silence = std::vector<std::int16_t>(4800);
    int m_videoCalls = 0;
    int m_audioCalls = 0;
};

/// With and without sound.
class MovieCancelTest : public ::testing::TestWithParam<bool>
{
protected:
    void SetUp() override
    {
        QFile file(m_movie);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("what was there");
    }

    [[nodiscard]] PKMuxerContext context() const
    {
        auto result = videoContext(m_movie, { 64, 48 });
        result.setReplacedFile(identityOfFile(m_movie));
        if (GetParam())
            result.setAudioCodecID(PKMuxerContext::audioCodecAac);
        return result;
    }
    [[nodiscard]] std::shared_ptr<PKMuxerTask> makeTask() const
    {
        return PKMuxerTask::create(std::make_shared<const PKMuxerContext>(context()));
    }
    [[nodiscard]] QStringList files() const
    {
        return QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden | QDir::System);
    }
    [[nodiscard]] QByteArray fileAtFinalName() const
    {
        QFile file(m_movie);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    void expectNothingWritten() const
    {
        EXPECT_EQ(files(), QStringList { QStringLiteral("a.mp4") });
        EXPECT_EQ(fileAtFinalName(), "what was there");
    }
    void expectCancelled(const TaskReport &report) const
    {
        ASSERT_FALSE(report.actions.isEmpty());
        EXPECT_EQ(report.actions.last(), PKMuxerTaskActionFailed);
        EXPECT_EQ(report.actions.count(PKMuxerTaskActionFailed), 1);
        ASSERT_TRUE(report.error().has_value());
        EXPECT_EQ(report.error()->kind, ErrorKind::Cancelled);
        EXPECT_EQ(report.error()->name, m_movie);
        expectNothingWritten();
    }

    QTemporaryDir m_folder;
    QString m_movie = m_folder.filePath(QStringLiteral("a.mp4"));
    EndlessSource m_endless;
    ListSource m_list;
};

INSTANTIATE_TEST_SUITE_P(Sound, MovieCancelTest, ::testing::Bool(), [](const auto &mode) {
    return std::string(mode.param ? "withSound" : "withoutSound");
});

/// With sound only.
class MovieCancelSoundTest : public MovieCancelTest
{
};

INSTANTIATE_TEST_SUITE_P(Sound, MovieCancelSoundTest, ::testing::Values(true));

TEST_P(MovieCancelTest, beforeTheStart)
{
    const auto task = makeTask();
    task->cancel();
    expectCancelled(runTask(*task, m_endless));
}

TEST_P(MovieCancelTest, beforeTheFirstFrame)
{
    const auto task = makeTask();
    m_endless.onVideo = [&](int) { task->cancel(); };
    expectCancelled(runTask(*task, m_endless));
}

TEST_P(MovieCancelTest, fromAnotherThreadWhileTheSourceIsBusy)
{
    const auto task = makeTask();
    std::binary_semaphore isBusy(0);
    std::binary_semaphore isCancelled(0);
    m_endless.onVideo = [&](int call) {
        if (call == 20) {
            isBusy.release();
            isCancelled.acquire();
        }
    };
    const std::jthread canceller([&] {
        isBusy.acquire();
        task->cancel();
        task->cancel(); // once more does no harm
        isCancelled.release();
    });
    expectCancelled(runTask(*task, m_endless));
}

TEST_P(MovieCancelTest, inTheMiddle)
{
    const auto task = makeTask();
    m_endless.onVideo = [&](int call) {
        if (call == 200)
            task->cancel();
    };
    expectCancelled(runTask(*task, m_endless));
}

TEST_P(MovieCancelTest, inFramesNoneOfWhichIsUsable)
{
    const auto task = makeTask();
    m_list.video.assign(1000, std::make_shared<PKVideoFrame2>(QImage()));
    int calls = 0;
    m_list.onVideo = [&] {
        if (++calls == 10)
            task->cancel();
    };
    expectCancelled(runTask(*task, m_list));
    EXPECT_EQ(calls, 10);
}

TEST_P(MovieCancelSoundTest, inSoundThatGoesOnBehindTheLastFrame)
{
    const auto task = makeTask();
    m_endless.videoFrames = 3;
    m_endless.onAudio = [&](int call) {
        if (call == 100)
            task->cancel();
    };
    expectCancelled(runTask(*task, m_endless));
}

TEST_P(MovieCancelTest, afterTheLastFrameWhichTheEncoderStillHolds)
{
    m_list.addGreys({ 64, 48 }, 60);
    std::stop_source stop;
    std::size_t calls = 0;
    m_list.onVideo = [&] {
        if (++calls == m_list.video.size() + 1)
            stop.request_stop();
    };
    bool isFinished = false;
    const ProgressSink progress = [&](double percent) { isFinished = isFinished || percent >= 99; };
    EXPECT_THROW(writeMovie(context(), m_list, progress, stop.get_token()), MovieFailure);
    EXPECT_EQ(calls, m_list.video.size() + 1);
    EXPECT_FALSE(isFinished);
    expectNothingWritten();
}

TEST_P(MovieCancelTest, atEveryPacketEvenTheLast)
{
    constexpr int frames = 12;
    for (int last = 1; last <= frames; ++last) {
        ListSource source;
        source.addGreys({ 64, 48 }, frames);
        std::stop_source stop;
        int packets = 0;
        const ProgressSink progress = [&](double) {
            if (++packets == last)
                stop.request_stop();
        };
        try {
            writeMovie(context(), source, progress, stop.get_token());
            ADD_FAILURE() << "not cancelled at packet " << last;
        } catch (const MovieFailure &failure) {
            EXPECT_EQ(failure.error().kind, ErrorKind::Cancelled);
        }
        EXPECT_EQ(packets, last);
        expectNothingWritten();
    }
}

TEST_P(MovieCancelTest, onceTheMovieIsCompleteNothingHappens)
{
    ensureApplication();
    const auto task = makeTask();
    m_list.addGreys({ 64, 48 }, 30);
    task->setDataSource(&m_list);
    QStringList actions;
    task->startMuxerWithBlock([&](const QString &action, const QVariant &) {
        actions.append(action);
        if (action == PKMuxerTaskActionComplete)
            task->cancel();
    });
    while (!actions.contains(PKMuxerTaskActionComplete) && !actions.contains(PKMuxerTaskActionFailed))
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    task->cancel();
    QCoreApplication::processEvents();
    EXPECT_EQ(actions.last(), PKMuxerTaskActionComplete);
    EXPECT_EQ(boxesOf(m_movie).first().name, u"ftyp");
    EXPECT_EQ(files(), QStringList { QStringLiteral("a.mp4") });
}

TEST_P(MovieCancelTest, theSameRecordingMakesAMovieAfterwards)
{
    m_list.addGreys({ 64, 48 }, 60);
    ListSource again;
    again.addGreys({ 64, 48 }, 60);
    const auto task = makeTask();
    m_list.onVideo = [&] { task->cancel(); };
    expectCancelled(runTask(*task, m_list));
    const auto report = runTask(context(), again);
    EXPECT_TRUE(report.isComplete()) << report.reason();
    EXPECT_EQ(report.statistics().framesWritten, 60);
}

} // namespace
} // namespace vornic::testing
