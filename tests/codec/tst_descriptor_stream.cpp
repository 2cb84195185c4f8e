#include "codec/descriptor_stream.h"

#include <QByteArray>
#include <QTemporaryFile>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <stop_token>

namespace vornic::testing {
namespace {

using Mode = DescriptorStream::Mode;

class DescriptorStreamTest : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(m_file.open()); }

    [[nodiscard]] int descriptor() const { return m_file.handle(); }
    static void write(DescriptorStream &stream, const QByteArray &bytes)
    {
        avio_write(stream.context(),
                   reinterpret_cast<const unsigned char *>(bytes.constData()),
                   static_cast<int>(bytes.size()));
        avio_flush(stream.context());
    }
    static QByteArray read(DescriptorStream &stream, int count)
    {
        QByteArray bytes(count, '\0');
        const int result
            = avio_read(stream.context(), reinterpret_cast<unsigned char *>(bytes.data()), count);
        bytes.truncate(std::max(result, 0));
        return bytes;
    }

    QTemporaryFile m_file;
};

TEST_F(DescriptorStreamTest, readsWhatAnotherWroteAndEndsThere)
{
    const QByteArray bytes = QByteArray("0123456789").repeated(100000); // many buffers
    DescriptorStream writer(descriptor(), Mode::Write);
    write(writer, bytes);
    EXPECT_EQ(writer.context()->error, 0);
    DescriptorStream reader(descriptor(), Mode::Read);
    EXPECT_EQ(read(reader, static_cast<int>(bytes.size()) + 10), bytes);
    EXPECT_TRUE(avio_feof(reader.context()));
    EXPECT_EQ(reader.context()->error, 0);
}

TEST_F(DescriptorStreamTest, eachHasItsPosition)
{
    DescriptorStream writer(descriptor(), Mode::Write);
    write(writer, "abcdef");
    DescriptorStream reader(descriptor(), Mode::Read);
    EXPECT_EQ(read(reader, 3), "abc");
    write(writer, "ghi");
    EXPECT_EQ(avio_seek(writer.context(), 1, SEEK_SET), 1);
    write(writer, "B");
    DescriptorStream again(descriptor(), Mode::Read);
    EXPECT_EQ(read(again, 20), "aBcdefghi");
    EXPECT_EQ(avio_seek(again.context(), -2, SEEK_CUR), 7);
    EXPECT_EQ(read(again, 20), "hi");
    EXPECT_EQ(avio_size(reader.context()), 9);
    EXPECT_LT(avio_seek(again.context(), -1, SEEK_SET), 0);
}

TEST_F(DescriptorStreamTest, keepsTheErrorOfTheSystem)
{
    const int readOnly = ::open(m_file.fileName().toLocal8Bit().constData(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(readOnly, 0);
    DescriptorStream writer(readOnly, Mode::Write);
    write(writer, "abc");
    EXPECT_EQ(writer.context()->error, AVERROR(EBADF));
    ::close(readOnly);
    DescriptorStream reader(readOnly, Mode::Read);
    EXPECT_EQ(read(reader, 3), "");
    EXPECT_EQ(reader.context()->error, AVERROR(EBADF));
}

TEST_F(DescriptorStreamTest, neitherWritesNorReadsAfterAStop)
{
    std::stop_source stop;
    DescriptorStream writer(descriptor(), Mode::Write, stop.get_token());
    DescriptorStream reader(descriptor(), Mode::Read, stop.get_token());
    write(writer, "abc");
    stop.request_stop();
    write(writer, "def");
    EXPECT_EQ(writer.context()->error, AVERROR_EXIT);
    EXPECT_EQ(read(reader, 3), "");
    EXPECT_EQ(reader.context()->error, AVERROR_EXIT);
    EXPECT_EQ(m_file.size(), 3);
}

} // namespace
} // namespace vornic::testing
