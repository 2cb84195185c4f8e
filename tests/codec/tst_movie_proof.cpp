#include "base/PKTimebase.h"
#include "base/log.h"
#include "codec/movie_contents.h"
#include "codec/movie_failure.h"
#include "codec/movie_proof.h"
#include "movie_test_support.h"

#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <random>

namespace vornic::testing {
namespace {

/// Where a sample lies in a file, in bytes.
struct Place {
    qint64 position = 0;
    qint64 size = 0;
};

/// One movie of a second with sound, which every test damages in a copy.
class MovieProofTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_whole = m_folder->filePath(QStringLiteral("a: whole.mp4"));
        makeMovie(m_whole, 30, 48000);
        QFile file(m_whole);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        m_bytes = file.readAll();
        m_lastFrame = lastSampleOf(m_whole, u"video");
        m_lastSound = lastSampleOf(m_whole, u"audio");
        ASSERT_GT(m_lastFrame.size, endBytes);
        ASSERT_GT(m_lastSound.size, endBytes);
        m_contents = contentsOfPictures(30);
        m_contents.lastFrame = endOf(m_lastFrame);
        m_contents.sounds = { { 2, 48000, 48000, endOf(m_lastSound) } };
    }
    static void TearDownTestSuite() { m_folder.reset(); }

    static void makeMovie(const QString &path, int frames, int samples)
    {
        ListSource source;
        source.addGreys({ 64, 48 }, frames);
        std::mt19937 random(1);
        std::vector<std::int16_t> noise(static_cast<std::size_t>(samples));
        for (std::int16_t &sample : noise)
            sample = static_cast<std::int16_t>(random() % 10000);
        if (samples > 0)
            source.audio.push_back(std::make_shared<PKAudioFrame2>(1, 1, 48000, samples, noise.data()));
        auto context = videoContext(path, { 64, 48 });
        if (samples > 0)
            context.setAudioCodecID(PKMuxerContext::audioCodecAac);
        ASSERT_TRUE(runTask(context, source).isComplete());
    }
    static Place lastSampleOf(const QString &path, QStringView type)
    {
        const auto probed = probe(path);
        Place place;
        for (const QJsonValue &packet : probed.value(u"packets").toArray())
            if (packet[u"codec_type"].toString() == type)
                place = { packet[u"pos"].toString().toLongLong(), packet[u"size"].toString().toLongLong() };
        return place;
    }
    static QByteArray endOf(Place sample) { return m_bytes.mid(sample.position, sample.size).last(endBytes); }
    static MovieContents contentsOfPictures(int frames)
    {
        MovieContents contents;
        contents.pictureSize = { 64, 48 };
        contents.frames = frames;
        contents.end = frames * PKTimebase / 30;
        return contents;
    }

    /// What is wrong with a file of these bytes; empty where nothing is.
    static std::string faultOf(const QByteArray &bytes)
    {
        const QString path = m_folder->filePath(QStringLiteral("damaged.mp4"));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        file.close();
        return faultOf(path, m_contents);
    }
    static std::string faultOf(const QString &path, const MovieContents &contents)
    {
        QFile file(path);
        static_cast<void>(file.open(QIODevice::ReadOnly)); // where there is none, nothing is read
        try {
            MovieProof(file.handle(), QStringLiteral("/x/o.mp4")).check(contents);
        } catch (const MovieFailure &failure) {
            EXPECT_EQ(failure.error().kind, ErrorKind::Incomplete);
            EXPECT_EQ(failure.error().subject, ErrorSubject::File);
            EXPECT_EQ(failure.error().name, u"/x/o.mp4");
            return failure.error().reason.toStdString();
        }
        return {};
    }
    /// What is wrong with the movie where its contents were these.
    template<typename Change>
    static std::string faultWhere(Change change)
    {
        MovieContents contents = m_contents;
        change(contents);
        return faultOf(m_whole, contents);
    }

    static constexpr qsizetype endBytes = 6;

    static inline std::unique_ptr<QTemporaryDir> m_folder;
    static inline QString m_whole;
    static inline QByteArray m_bytes; ///< of m_whole, as all below
    static inline MovieContents m_contents;
    static inline Place m_lastFrame;
    static inline Place m_lastSound;
};

TEST_F(MovieProofTest, aWholeMovieIsProven)
{
    EXPECT_EQ(faultOf(m_bytes), "");
    const QString silent = m_folder->filePath(QStringLiteral("silent.mp4"));
    makeMovie(silent, 5, 0);
    EXPECT_EQ(faultOf(silent, contentsOfPictures(5)), "");
}

TEST_F(MovieProofTest, framesThatAreMissing)
{
    EXPECT_EQ(faultWhere([](MovieContents &it) { it.frames = 31; }), "30 of 31 frames");
    EXPECT_EQ(faultWhere([](MovieContents &it) { it.frames = 29; }), "30 of 29 frames");
}

TEST_F(MovieProofTest, picturesOfAnotherSize)
{
    EXPECT_EQ(faultWhere([](MovieContents &it) { it.pictureSize.rwidth() += 2; }),
              "pictures of 64 x 48 pixels");
    EXPECT_EQ(faultWhere([](MovieContents &it) { it.pictureSize.rheight() += 2; }),
              "pictures of 64 x 48 pixels");
}

TEST_F(MovieProofTest, picturesOfAnotherTime)
{
    EXPECT_EQ(faultWhere([](MovieContents &it) { it.end += 1; }), "pictures until 90000, not 90001");
    EXPECT_EQ(faultWhere([](MovieContents &it) { it.end -= 1; }), "pictures until 90000, not 89999");
    EXPECT_EQ(faultWhere([](MovieContents &it) { it.begin += 1; }), "pictures from 0 on, not from 1");
}

TEST_F(MovieProofTest, soundOfAnotherLength)
{
    EXPECT_EQ(faultWhere([](MovieContents &it) { it.sounds.front().samples += 1024; }), "");
    EXPECT_EQ(faultWhere([](MovieContents &it) { it.sounds.front().samples += 1025; }),
              "48000 of 49025 samples of sound");
    EXPECT_EQ(faultWhere([](MovieContents &it) { it.sounds.front().samples -= 1025; }),
              "48000 of 46975 samples of sound");
}

TEST_F(MovieProofTest, soundOfAnotherFormat)
{
    EXPECT_EQ(faultWhere([](MovieContents &it) { it.sounds.front().sampleRate = 44100; }),
              "sound of 48000 Hz, 2 channels");
    EXPECT_EQ(faultWhere([](MovieContents &it) { it.sounds.front().channels = 1; }),
              "sound of 48000 Hz, 2 channels");
}

TEST_F(MovieProofTest, soundThatIsMissing)
{
    const QString silent = m_folder->filePath(QStringLiteral("soundless.mp4"));
    makeMovie(silent, 30, 0);
    MovieContents contents = contentsOfPictures(30);
    contents.sounds = { { 2, 48000, 1, {} } };
    EXPECT_EQ(faultOf(silent, contents), "no sound");
}

TEST_F(MovieProofTest, soundThatNobodyPutIn)
{
    EXPECT_EQ(faultWhere([](MovieContents &it) { it.sounds.front().samples = 0; }),
              "sound that was not put in");
    EXPECT_EQ(faultWhere([](MovieContents &it) { it.sounds.push_back(it.sounds.front()); }), "no sound");
}

TEST_F(MovieProofTest, aFileThatIsCutShort)
{
    for (qsizetype size = 0; size < m_bytes.size(); size += m_bytes.size() / 50)
        EXPECT_NE(faultOf(m_bytes.first(size)), "") << size;
    EXPECT_NE(faultOf(m_bytes.chopped(1)).find("beyond the file's end"), std::string::npos);
}

TEST_F(MovieProofTest, aLastSampleThatWasNotWritten)
{
    for (const Place sample : { m_lastFrame, m_lastSound }) {
        QByteArray damaged = m_bytes;
        damaged.replace(sample.position, sample.size, QByteArray(sample.size, '\0'));
        EXPECT_EQ(faultOf(damaged), "another last sample than was put in");
    }
}

TEST_F(MovieProofTest, aFileThatIsNoMovie)
{
    EXPECT_NE(faultOf(QByteArray()), "");
    EXPECT_NE(faultOf(QByteArray("What is this?")), "");
    EXPECT_NE(faultOf(QByteArray(m_bytes.size(), '\0')), "");
    std::mt19937 random(1);
    QByteArray garbage(m_bytes.size(), '\0');
    for (char &byte : garbage)
        byte = static_cast<char>(random());
    EXPECT_NE(faultOf(garbage), "");
    EXPECT_NE(faultOf(m_folder->path(), m_contents), "");
    EXPECT_NE(faultOf(m_folder->filePath(QStringLiteral("nowhere.mp4")), m_contents), "");
}

/// Whatever stands in the index, the answer is that the movie is whole or that it is not.
TEST_F(MovieProofTest, anIndexOfAnyContents)
{
    const auto previous = setLogSink([](const QString &) {}); // the library's thousand complaints
    qsizetype indexEnd = 0;
    for (const Box &box : boxesOf(m_whole))
        indexEnd += box.name == u"mdat" ? 0 : box.size;
    std::mt19937 random(1);
    const auto below = [&random](qsizetype limit) { return static_cast<qsizetype>(random()) % limit; };
    int damaged = 0;
    for (int i = 0; i < 300; ++i) {
        QByteArray bytes = m_bytes;
        for (qsizetype changes = 1 + below(3); changes > 0; --changes)
            bytes[below(indexEnd)] = static_cast<char>(random());
        damaged += faultOf(bytes).empty() ? 0 : 1;
    }
    setLogSink(previous);
    EXPECT_GT(damaged, 100);
}

TEST(MovieProof, anEndingIsWhatStandsBehindTheLastStartCode)
{
    const auto endingOf = [](const QByteArray &packet) { return MovieProof::endingOf(packet).toStdString(); };
    EXPECT_EQ(endingOf(QByteArray()), "");
    EXPECT_EQ(endingOf("sound"), "sound");
    EXPECT_EQ(endingOf(QByteArray("\0\0\0\1picture", 11)), "picture");
    EXPECT_EQ(endingOf(QByteArray("\0\0\0\1first\0\0\1second", 18)), "second");
    EXPECT_EQ(endingOf(QByteArray("\0\0\1", 3)), "");
}

TEST(MovieProof, anEndingHoldsNoPartOfAStartCode)
{
    for (int length = 1; length < 200; ++length) {
        const QByteArray unit(length, 'u');
        const QByteArray ending = MovieProof::endingOf(QByteArray("info\0\0\0\1", 8) + unit);
        EXPECT_FALSE(ending.isEmpty());
        EXPECT_TRUE(unit.endsWith(ending)) << length;
    }
}

} // namespace
} // namespace vornic::testing
