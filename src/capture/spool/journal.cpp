#include "capture/spool/journal.h"

#include "base/keyed_archive.h"
#include "capture/spool/VNDataBlock.h"
#include "capture/spool/pointer_shape_archive.h"
#include "capture/spool/recording_description.h"
#include "capture/spool/spool_file.h"

#include <utility>

namespace vornic {

Journal::Journal(std::shared_ptr<SpoolFile> file)
    : m_file(std::move(file))
    , m_end(m_file->size())
{
}

void Journal::append(JournalKind kind, QByteArrayView payload)
{
    if (payload.size() > maxJournalPayload)
        return;
    const QByteArray record = journalRecord(kind, payload);
    const std::lock_guard lock(m_addMutex);
    m_added.append(record);
}

void Journal::add(const RecordingDescription &description)
{
    append(JournalKind::Description, archivedData(description));
}

void Journal::add(std::uint64_t index, const CursorShape &shape)
{
    append(JournalKind::PointerShape, pointerShapeArchive(index, shape));
}

void Journal::add(SpoolKind spool, const std::vector<VNDataBlock> &blocks)
{
    for (const VNDataBlock &block : blocks)
        append(JournalKind::Block, blockPayload(spool, block));
}

void Journal::finish()
{
    append(JournalKind::Finished, {});
    // Where that cannot be, the worst is that somebody is asked about an empty recording.
    static_cast<void>(write() && m_file->sync());
}

bool Journal::write()
{
    const std::lock_guard writing(m_writeMutex);
    {
        const std::lock_guard lock(m_addMutex);
        m_beingWritten.append(m_added);
        m_added.resize(0);
    }
    if (m_beingWritten.isEmpty())
        return true;
    if (!m_file->write(m_end, m_beingWritten)) {
        m_writeFailed = true;
        return false;
    }
    m_end += static_cast<std::uint64_t>(m_beingWritten.size());
    m_beingWritten.resize(0);
    return true;
}

} // namespace vornic
