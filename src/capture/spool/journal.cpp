#include "capture/spool/journal.h"

#include "base/keyed_archive.h"
#include "capture/spool/VNDataBlock.h"
#include "capture/spool/journal_contents.h"
#include "capture/spool/pointer_shape_archive.h"
#include "capture/spool/recording_description.h"
#include "capture/spool/spool_file.h"

#include <utility>

namespace vornic {

Journal::Journal(std::shared_ptr<SpoolFile> file)
    : m_file(std::move(file))
    , m_addedEnd(m_file->size())
    , m_end(m_addedEnd)
{
}

std::optional<Journal::Place> Journal::append(JournalKind kind, QByteArrayView payload)
{
    if (payload.size() > maxJournalPayload)
        return std::nullopt;
    const QByteArray record = journalRecord(kind, payload);
    const std::lock_guard lock(m_addMutex);
    const Place place { m_addedEnd, record.size() };
    m_added.append(record);
    m_addedEnd += static_cast<std::uint64_t>(record.size());
    return place;
}

void Journal::add(const RecordingDescription &description)
{
    append(JournalKind::Description, archivedData(description));
}

void Journal::add(std::uint64_t index, const CursorShape &shape)
{
    {
        const std::lock_guard lock(m_addMutex);
        if (m_shapes.contains(index))
            return;
    }
    const std::optional<Place> place = append(JournalKind::PointerShape, pointerShapeArchive(index, shape));
    const std::lock_guard lock(m_addMutex);
    if (place)
        m_shapes.emplace(index, *place);
}

QByteArray Journal::read(Place place)
{
    const std::lock_guard writing(m_writeMutex);
    if (place.offset < m_end)
        return m_file->read(place.offset, static_cast<std::uint64_t>(place.length));
    const std::lock_guard lock(m_addMutex);
    const auto position = static_cast<qsizetype>(place.offset - m_end);
    const qsizetype before = m_beingWritten.size();
    return position < before ? m_beingWritten.mid(position, place.length)
                             : m_added.mid(position - before, place.length);
}

std::shared_ptr<const CursorShape> Journal::pointerShape(std::uint64_t index)
{
    Place place {};
    {
        const std::lock_guard lock(m_addMutex);
        const auto found = m_shapes.find(index);
        if (found == m_shapes.end())
            return nullptr;
        place = found->second;
    }
    const auto shapes = readJournal(read(place)).pointerShapes;
    return shapes.empty() ? nullptr : shapes.begin()->second;
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
