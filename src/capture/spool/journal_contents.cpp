#include "capture/spool/journal_contents.h"

#include "base/keyed_archive.h"
#include "capture/spool/journal_format.h"
#include "capture/spool/pointer_shape_archive.h"

namespace vornic {

namespace {

void addBlock(std::vector<VNDataBlock> &blocks, const VNDataBlock &block)
{
    const std::uint64_t end = blocks.empty() ? 0 : blocks.back().offset() + blocks.back().length();
    if (block.offset() < end)
        return;
    if (block.offset() > end) {
        VNDataBlock lost(end, block.offset() - end);
        lost.setTimeStamp(block.timeStamp());
        lost.setIsLost();
        blocks.push_back(lost);
    }
    blocks.push_back(block);
}

void addDescription(JournalContents &contents, QByteArrayView payload)
{
    if (const auto unarchiver = KeyedUnarchiver::create(payload.toByteArray()))
        if (auto description = RecordingDescription::createWithCoder(*unarchiver))
            contents.description = std::move(description);
}

void addRecord(JournalContents &contents, const JournalRecord &record)
{
    switch (record.kind) {
    case JournalKind::Description:
        addDescription(contents, record.payload);
        break;
    case JournalKind::PointerShape:
        if (auto shape = pointerShapeFromArchive(record.payload))
            contents.pointerShapes.insert(*std::move(shape));
        break;
    case JournalKind::Block:
        if (const auto block = blockFromPayload(record.payload))
            addBlock(block->first == SpoolKind::Video ? contents.video : contents.audio, block->second);
        break;
    case JournalKind::Finished:
        contents.isFinished = true;
        break;
    }
}

} // namespace

JournalContents readJournal(QByteArrayView journal)
{
    JournalContents contents;
    qsizetype position = 0;
    while (const auto record = nextJournalRecord(journal, position)) {
        addRecord(contents, *record);
        position = record->end;
    }
    return contents;
}

} // namespace vornic
