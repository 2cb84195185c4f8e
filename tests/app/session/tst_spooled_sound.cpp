#include "app/session/spooled_sound.h"
#include "audio/chunk_spooler.h"
#include "audio/chunk_unspooler.h"
#include "base/keyed_archive.h"
#include "codec/PKAudioFrame2.h"

#include <gtest/gtest.h>

#include <deque>

namespace vornic {
namespace {

/// Sound in chunks of 20 ms of one value each, on its way from the recorder to the encoder.
class SpooledSoundTest : public ::testing::Test
{
protected:
    static constexpr qsizetype chunkBytes = 3840;
    static constexpr double noEnd = 1e9;

    static QByteArray samplesOf(char value) { return QByteArray(chunkBytes, value); }
    QByteArray archiveOf(const PKAudioRecorderData &chunk)
    {
        KeyedArchiver archiver;
        m_spooler.encode(chunk, archiver);
        return archiver.bytes();
    }
    QByteArray archiveOf(char value)
    {
        return archiveOf(PKAudioRecorderData(samplesOf(value), defaultAudioStreamBasicDescription()));
    }
    /// What the hand-off makes of the archives, one behind the other.
    QByteArray heard(const std::deque<QByteArray> &archives, double end = noEnd)
    {
        for (const QByteArray &archive : archives)
            if (auto chunk = m_unspooler.decode(*KeyedUnarchiver::create(archive)))
                m_chunks.push_back(*std::move(chunk));
        QByteArray samples;
        while (const auto block = m_sound.next(end))
            samples += block->samples();
        return samples;
    }

    ChunkSpooler m_spooler;
    ChunkUnspooler m_unspooler;
    std::deque<PKAudioRecorderData> m_chunks;
    SpooledSound m_sound { [this]() -> std::optional<PKAudioRecorderData> {
        if (m_chunks.empty())
            return std::nullopt;
        PKAudioRecorderData chunk = std::move(m_chunks.front());
        m_chunks.pop_front();
        return chunk;
    } };
};

TEST_F(SpooledSoundTest, WhatIsWholeFollowsWithoutAGap)
{
    std::deque<QByteArray> archives;
    QByteArray expected;
    for (int i = 0; i < 300; ++i) {
        archives.push_back(archiveOf(static_cast<char>(i)));
        expected += samplesOf(static_cast<char>(i));
    }
    EXPECT_EQ(heard(archives), expected);
}

TEST_F(SpooledSoundTest, AChunkThatIsLostBecomesSilenceOfItsLength)
{
    const std::deque<QByteArray> archives { archiveOf('a'), archiveOf('b'), archiveOf('c'), archiveOf('d') };
    EXPECT_EQ(heard({ archives[0], archives[3] }),
              samplesOf('a') + QByteArray(2 * chunkBytes, '\0') + samplesOf('d'));
}

TEST_F(SpooledSoundTest, TheFirstChunkThatIsLostLeavesTheOthersWhereTheyWere)
{
    archiveOf('a');
    EXPECT_EQ(heard({ archiveOf(PKAudioRecorderData(samplesOf('b'),
                                                    [] {
                                                        AudioStreamBasicDescription format
                                                            = defaultAudioStreamBasicDescription();
                                                        format.mReserved = 1; // so that it is told again
                                                        return format;
                                                    }())) }),
              samplesOf('\0') + samplesOf('b'));
}

TEST_F(SpooledSoundTest, SilenceOfUnsignedSamplesIsTheirMiddle)
{
    AudioStreamBasicDescription format = defaultAudioStreamBasicDescription();
    format.mBitsPerChannel = 8;
    format.mBytesPerFrame = 2;
    const auto archive = [&] { return archiveOf(PKAudioRecorderData(QByteArray(1920, 'x'), format)); };
    const QByteArray first = archive();
    archive();
    EXPECT_EQ(heard({ first, archive() }),
              QByteArray(1920, 'x') + QByteArray(1920, '\x80') + QByteArray(1920, 'x'));
}

TEST_F(SpooledSoundTest, AnHourThatIsLostIsGivenInSmallParts)
{
    m_chunks.emplace_back(samplesOf('a'), defaultAudioStreamBasicDescription());
    m_chunks.back().setBegin(3600);
    std::int64_t frames = 0;
    while (const auto block = m_sound.next(noEnd)) {
        EXPECT_LE(block->numberOfSamples(), 48'000);
        frames += block->numberOfSamples();
    }
    EXPECT_EQ(frames, 3600 * 48'000 + 960);
}

TEST_F(SpooledSoundTest, AChunkThatClaimsToBeginBehindTheEndFollowsAtOnce)
{
    for (const double begin : { 20.1, 1e300, std::numeric_limits<double>::infinity() }) {
        m_chunks.emplace_back(samplesOf('a'), defaultAudioStreamBasicDescription());
        m_chunks.back().setBegin(begin);
        EXPECT_EQ(heard({}, 20), samplesOf('a')) << begin;
    }
}

TEST_F(SpooledSoundTest, AChunkThatClaimsToBeginEarlierFollowsTheOneBefore)
{
    for (const double begin : { -5.0, 0.0, std::numeric_limits<double>::quiet_NaN() }) {
        m_chunks.emplace_back(samplesOf('a'), defaultAudioStreamBasicDescription());
        m_chunks.back().setBegin(begin);
        EXPECT_EQ(heard({}), samplesOf('a')) << begin;
    }
}

TEST_F(SpooledSoundTest, NoMoreIsReadThanAChunkHolds)
{
    using Format = AudioStreamBasicDescription;
    const auto expectLeftOut = [this](std::uint32_t Format::*field, std::uint32_t value) {
        Format format = defaultAudioStreamBasicDescription();
        format.*field = value;
        m_chunks.emplace_back(samplesOf('a'), format);
        m_chunks.emplace_back(samplesOf('b'), defaultAudioStreamBasicDescription());
        EXPECT_EQ(heard({}), samplesOf('b')) << value;
    };
    // Times the channels, and divided, each of these is a small number of bytes in 32 bits.
    for (const std::uint32_t depth : { 0U, 1U, 15U, 17U, 24U, 32U, 0x80000004U, 0x80000008U, 0xFFFFFFFFU })
        expectLeftOut(&Format::mBitsPerChannel, depth);
    for (const std::uint32_t channels : { 0U, 33U, 0x10000001U, 0x20000001U, 0xFFFFFFFFU })
        expectLeftOut(&Format::mChannelsPerFrame, channels);
}

} // namespace
} // namespace vornic
