#include "base/error_stream.h"
#include "support/wait_until.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <thread>
#include <utility>

namespace vornic {
namespace {

using namespace std::chrono_literals;

/// A stream into a pipe, which is read only when the test wants to.
class ErrorStreamTest : public ::testing::Test
{
protected:
    ErrorStreamTest() { EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0); }
    ~ErrorStreamTest() override
    {
        for (const int end : ends)
            ::close(end);
    }

    /// As a terminal that is stopped.
    void fillPipe()
    {
        setBlocking(ends[1], false);
        const QByteArray some(4096, '.');
        while (::write(ends[1], some.constData(), static_cast<std::size_t>(some.size())) > 0)
            filling += some.size();
        setBlocking(ends[1], true);
    }
    /// All that has been written to the pipe behind what fills it.
    QByteArray readAll()
    {
        setBlocking(ends[0], false);
        std::array<char, 65'536> bytes {};
        for (ssize_t count = 0; (count = ::read(ends[0], bytes.data(), bytes.size())) > 0;)
            seen.append(bytes.data(), count);
        return seen.mid(filling);
    }
    /// The same once \a stream has written everything.
    QByteArray readToTheEnd(ErrorStream &stream)
    {
        EXPECT_TRUE(test::waitUntil([&] {
            readAll();
            return stream.flush(1ms);
        }));
        return readAll();
    }
    static void setBlocking(int descriptor, bool blocks)
    {
        const int flags = ::fcntl(descriptor, F_GETFL);
        ::fcntl(descriptor, F_SETFL, blocks ? flags & ~O_NONBLOCK : flags | O_NONBLOCK);
    }

    std::array<int, 2> ends {};
    qsizetype filling = 0;
    QByteArray seen;
};

TEST_F(ErrorStreamTest, LinesAreWrittenInTheirOrderAndPrintable)
{
    ErrorStream stream(ends[1]);
    stream.writeLine("one");
    stream.writeLine(QStringLiteral("Größe\n\x1b[2J"));
    EXPECT_EQ(readToTheEnd(stream).toStdString(), "one\nGröße\\n\\x1b[2J\n");
}

TEST_F(ErrorStreamTest, WhoTellsSomethingIsNotHeldUpByWhoeverReadsIt)
{
    fillPipe();
    ErrorStream stream(ends[1]);
    std::atomic<bool> isTold = false;
    std::jthread teller([&] {
        for (int i = 0; i < 100; ++i)
            stream.writeLine(QString::number(i));
        isTold = true;
    });
    EXPECT_TRUE(test::waitUntil([&] { return isTold.load(); }));
    EXPECT_FALSE(stream.flush(1ms));
    const QByteArray told = readToTheEnd(stream);
    EXPECT_TRUE(told.startsWith("0\n1\n2\n")) << told.toStdString();
    EXPECT_TRUE(told.endsWith("\n98\n99\n")) << told.toStdString();
}

TEST_F(ErrorStreamTest, OfRedrawnLinesThatWaitOnlyTheLastIsWritten)
{
    fillPipe();
    ErrorStream stream(ends[1]);
    stream.writeLine("first");
    for (int i = 0; i < 1000; ++i)
        stream.redraw(QString::number(i));
    stream.writeLine("last");
    EXPECT_EQ(readToTheEnd(stream).toStdString(), "first\n\r\x1b[K999\nlast\n");
}

TEST_F(ErrorStreamTest, ARedrawnLineEndsOnce)
{
    ErrorStream stream(ends[1]);
    stream.endRedrawnLine();
    stream.redraw("12 %");
    stream.endRedrawnLine();
    stream.endRedrawnLine();
    stream.writeLine("done");
    EXPECT_EQ(readToTheEnd(stream).toStdString(), "\r\x1b[K12 %\ndone\n");
}

TEST_F(ErrorStreamTest, WhatNobodyReadsGathersUpToALimit)
{
    fillPipe();
    ErrorStream stream(ends[1]);
    const QString line(1023, u'x');
    for (int i = 0; i < 4096; ++i)
        stream.writeLine(line);
    const qsizetype told = readToTheEnd(stream).size();
    EXPECT_GT(told, 1'000'000);
    EXPECT_LE(told, (1 << 20) + 1024) << "one may be on its way already";
    stream.writeLine("again");
    EXPECT_TRUE(readToTheEnd(stream).endsWith("x\nagain\n"));
}

TEST_F(ErrorStreamTest, AStreamThatNobodyReadsEndsAllTheSame)
{
    fillPipe();
    ErrorStream stream(ends[1]);
    stream.writeLine("lost");
}

TEST_F(ErrorStreamTest, WhereNobodyReadsAnyMoreNothingIsHeldBack)
{
    std::signal(SIGPIPE, SIG_IGN);
    fillPipe();
    ErrorStream stream(ends[1]);
    stream.writeLine("lost");
    ::close(std::exchange(ends[0], -1));
    EXPECT_TRUE(stream.flush(20s));
}

} // namespace
} // namespace vornic
