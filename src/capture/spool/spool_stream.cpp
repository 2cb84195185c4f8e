#include "capture/spool/spool_stream.h"

#include "base/log.h"

#include <utility>

namespace vornic {

SpoolStream::SpoolStream(std::string queueLabel)
    : m_queue(std::move(queueLabel))
{
}

bool SpoolStream::createEmptyFile(const QString &path)
{
    QFile::remove(path);
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return true;
    logMessage(QStringLiteral("Failed to create tmp file."));
    return false;
}

void SpoolStream::open(const QString &path)
{
    m_tmpDataFileHandle.reset();
    if (createEmptyFile(path)) {
        m_tmpDataFileHandle = std::make_unique<QFile>(path);
        if (!m_tmpDataFileHandle->open(QIODevice::ReadWrite | QIODevice::Unbuffered))
            m_tmpDataFileHandle.reset();
    }
    m_tmpOffset = 0;
    m_tmpBufWrite.resize(0);
    m_writeFailed = false;
}

void SpoolStream::clear(const QString &path)
{
    m_index.clear();
    m_tmpDataFileHandle.reset();
    QFile::remove(path);
}

std::optional<std::uint64_t> SpoolStream::writeBufferToFile()
{
    if (!m_tmpDataFileHandle) {
        // Offsets still grow, so that no block that is pushed later is read in place of one that is lost.
        const std::uint64_t end = m_tmpOffset;
        m_tmpBufWrite.resize(0);
        return end;
    }
    const qint64 end = m_tmpDataFileHandle->size();
    const bool written
        = m_tmpDataFileHandle->seek(end) && m_tmpDataFileHandle->write(m_tmpBufWrite) == m_tmpBufWrite.size();
    if (!written) {
        logMessage(QStringLiteral("Failed to write the spool: %1").arg(m_tmpDataFileHandle->errorString()));
        m_tmpDataFileHandle->resize(end);
        m_writeFailed = true;
        return std::nullopt;
    }
    m_tmpBufWrite.resize(0);
    return static_cast<std::uint64_t>(end);
}

void SpoolStream::append(const QByteArray &block, std::int64_t timeStamp, bool compressed)
{
    if (m_tmpBufWrite.capacity() < flushLength)
        m_tmpBufWrite.reserve(flushLength);
    VNDataBlock entry(m_tmpOffset + static_cast<std::uint64_t>(m_tmpBufWrite.size()),
                      static_cast<std::uint64_t>(block.size()));
    entry.setTimeStamp(timeStamp);
    entry.setIsCompressed(compressed);
    m_tmpBufWrite.append(block);
    if (m_tmpBufWrite.size() >= flushLength) {
        const auto length = static_cast<std::uint64_t>(m_tmpBufWrite.size());
        if (const auto end = writeBufferToFile())
            m_tmpOffset = *end + length;
    }
    m_index.append(entry);
}

void SpoolStream::end()
{
    if (m_tmpBufWrite.isEmpty())
        return;
    if (const auto end = writeBufferToFile())
        m_tmpOffset = *end;
}

QByteArray SpoolStream::read(const VNDataBlock &entry)
{
    const auto buffered = static_cast<std::uint64_t>(m_tmpBufWrite.size());
    if (entry.offset() >= m_tmpOffset && buffered >= entry.offset() - m_tmpOffset + entry.length()) {
        return m_tmpBufWrite.mid(static_cast<qsizetype>(entry.offset() - m_tmpOffset),
                                 static_cast<qsizetype>(entry.length()));
    }
    if (!m_tmpDataFileHandle || !m_tmpDataFileHandle->seek(static_cast<qint64>(entry.offset())))
        return {};
    return m_tmpDataFileHandle->read(static_cast<qint64>(entry.length()));
}

std::optional<SpoolStream::Block> SpoolStream::takeOldest()
{
    const std::optional<VNDataBlock> entry = m_index.takeOldest();
    if (!entry)
        return std::nullopt;
    return Block { *entry, read(*entry) };
}

} // namespace vornic
