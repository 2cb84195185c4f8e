#pragma once

#include "base/log.h"
#include "codec_samples.h"

#include <QStringList>

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstring>
#include <utility>

namespace vornic::test {

/// Collects what is logged while it lives.
class CapturedLog
{
public:
    CapturedLog()
        : m_before(setLogSink([this](const QString &line) { m_lines.append(line); }))
    {
    }
    ~CapturedLog() { setLogSink(std::move(m_before)); }
    CapturedLog(const CapturedLog &) = delete;
    CapturedLog &operator=(const CapturedLog &) = delete;

    QStringList lines() const { return m_lines; }

private:
    QStringList m_lines;
    LogSink m_before;
};

/// Zero bytes that take up addresses, not memory, as long as nobody reads them.
class HugeZeros
{
public:
    explicit HugeZeros(std::size_t size)
        : m_size(size)
        , m_address(mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0))
    {
    }
    ~HugeZeros()
    {
        if (isThere())
            munmap(m_address, m_size);
    }
    HugeZeros(const HugeZeros &) = delete;
    HugeZeros &operator=(const HugeZeros &) = delete;

    bool isThere() const { return m_address != MAP_FAILED; }
    QByteArray bytes() const
    {
        return QByteArray::fromRawData(static_cast<const char *>(m_address), static_cast<qsizetype>(m_size));
    }

private:
    std::size_t m_size;
    void *m_address;
};

/// True when both are one buffer, not merely equal.
inline bool isSameBuffer(const QByteArray &left, const QByteArray &right)
{
    return left.constData() == right.constData() && left.size() == right.size();
}

/// An empty buffer that can be told from other empty buffers.
inline QByteArray ownEmptyBuffer()
{
    QByteArray buffer;
    buffer.reserve(16);
    return buffer;
}

template<typename Length>
QByteArray withLength(Length length, const QByteArray &block)
{
    QByteArray framed(sizeof length, '\0');
    std::memcpy(framed.data(), &length, sizeof length);
    return framed + block;
}

template<typename Length>
Length lengthOf(const QByteArray &framed)
{
    Length length = 0;
    std::memcpy(&length, framed.constData(), sizeof length);
    return length;
}

/// A test run once for each of allSamples().
class SampleTest : public testing::TestWithParam<Sample>
{
protected:
    const QByteArray &input() const { return GetParam().bytes; }
};

inline std::string sampleName(const testing::TestParamInfo<Sample> &info)
{
    return info.param.name;
}

} // namespace vornic::test
