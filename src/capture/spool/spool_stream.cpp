#include "capture/spool/spool_stream.h"

#include "capture/spool/checksum.h"
#include "capture/spool/journal.h"
#include "capture/spool/spool_file.h"

#include <utility>

namespace vornic {

SpoolStream::SpoolStream(std::string queueLabel, SpoolKind kind)
    : m_kind(kind)
    , m_queue(std::move(queueLabel))
{
}

void SpoolStream::forgetMemory()
{
    if (m_batch)
        m_batch->isDone.wait(false);
    m_batch = nullptr;
    m_tmpBufWrite.resize(0);
    m_gatheredEntries.clear();
    m_tmpOffset = 0;
}

void SpoolStream::open(std::shared_ptr<SpoolFile> file, std::shared_ptr<Journal> journal)
{
    forgetMemory();
    m_tmpDataFileHandle = std::move(file);
    m_journal = std::move(journal);
    m_writeFailed = false;
}

void SpoolStream::openLeft(std::shared_ptr<SpoolFile> file, const std::vector<VNDataBlock> &blocks)
{
    open(std::move(file), nullptr);
    m_index.clear();
    for (const VNDataBlock &block : blocks)
        m_index.append(block);
    if (m_tmpDataFileHandle)
        m_tmpOffset = m_tmpDataFileHandle->size();
}

void SpoolStream::close()
{
    m_index.clear();
    forgetMemory();
    m_tmpDataFileHandle = nullptr;
    m_journal = nullptr;
}

void SpoolStream::Batch::write()
{
    // Without a file the bytes are lost; offsets grow all the same, so that no later block is read in their place.
    isWritten = !file || file->write(offset, bytes);
    isDone = true;
    isDone.notify_all();
}

std::optional<QByteArray> SpoolStream::Batch::find(const VNDataBlock &entry) const
{
    if (!file || entry.offset() < offset)
        return std::nullopt;
    const std::uint64_t start = entry.offset() - offset;
    const auto length = static_cast<std::uint64_t>(bytes.size());
    if (start > length || entry.length() > length - start)
        return std::nullopt;
    return bytes.mid(static_cast<qsizetype>(start), static_cast<qsizetype>(entry.length()));
}

/// What has been gathered becomes the batch on its way; null when there is nothing, or another is under way.
std::shared_ptr<SpoolStream::Batch> SpoolStream::takeGathered()
{
    settle();
    if (m_batch || m_gatheredEntries.empty())
        return nullptr;
    m_batch = std::make_shared<Batch>();
    m_batch->offset = m_tmpOffset;
    m_batch->file = m_tmpDataFileHandle;
    m_tmpOffset += static_cast<std::uint64_t>(m_tmpBufWrite.size());
    m_batch->bytes = std::exchange(m_tmpBufWrite, {});
    m_batch->entries = std::exchange(m_gatheredEntries, {});
    return m_batch;
}

/// A batch that has been written is told to the journal; one that could not be written is gathered again.
void SpoolStream::settle()
{
    if (!m_batch || !m_batch->isDone)
        return;
    const std::shared_ptr<Batch> batch = std::exchange(m_batch, nullptr);
    if (batch->isWritten) {
        if (m_journal && batch->file)
            m_journal->add(m_kind, batch->entries);
        return;
    }
    m_writeFailed = true;
    m_tmpOffset = batch->offset;
    m_tmpBufWrite.prepend(batch->bytes);
    m_gatheredEntries.insert(m_gatheredEntries.begin(), batch->entries.begin(), batch->entries.end());
}

void SpoolStream::writeNow()
{
    if (m_batch)
        m_batch->isDone.wait(false);
    if (const std::shared_ptr<Batch> batch = takeGathered())
        batch->write();
    settle();
}

void SpoolStream::writeBehind()
{
    std::shared_ptr<Batch> batch;
    m_queue.sync([&] { batch = takeGathered(); });
    if (!batch)
        return;
    batch->write();
    m_queue.sync([this] { settle(); });
}

void SpoolStream::append(const QByteArray &block, std::int64_t timeStamp, bool compressed)
{
    VNDataBlock entry(m_tmpOffset + static_cast<std::uint64_t>(m_tmpBufWrite.size()),
                      static_cast<std::uint64_t>(block.size()));
    entry.setTimeStamp(timeStamp);
    entry.setIsCompressed(compressed);
    entry.setChecksum(checksumOf(block));
    const bool isFirst = m_gatheredEntries.empty();
    m_tmpBufWrite.append(block);
    m_gatheredEntries.push_back(entry);
    m_index.append(entry);
    if (m_tmpBufWrite.size() >= flushLength)
        writeNow();
    else if (isFirst && m_gatheringBegins)
        m_gatheringBegins();
}

void SpoolStream::end()
{
    writeNow();
}

QByteArray SpoolStream::read(const VNDataBlock &entry) const
{
    const auto gathered = static_cast<std::uint64_t>(m_tmpBufWrite.size());
    if (entry.offset() >= m_tmpOffset && gathered >= entry.offset() - m_tmpOffset + entry.length()) {
        return m_tmpBufWrite.mid(static_cast<qsizetype>(entry.offset() - m_tmpOffset),
                                 static_cast<qsizetype>(entry.length()));
    }
    if (m_batch)
        if (const auto bytes = m_batch->find(entry))
            return *bytes;
    return m_tmpDataFileHandle ? m_tmpDataFileHandle->read(entry.offset(), entry.length()) : QByteArray();
}

std::optional<SpoolStream::Block> SpoolStream::takeOldest()
{
    const std::optional<VNDataBlock> entry = m_index.takeOldest();
    if (!entry)
        return std::nullopt;
    QByteArray bytes = entry->isLost() ? QByteArray() : read(*entry);
    if (checksumOf(bytes) != entry->checksum())
        bytes.clear();
    return Block { *entry, std::move(bytes) };
}

} // namespace vornic
