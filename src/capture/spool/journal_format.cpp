#include "capture/spool/journal_format.h"

#include "capture/spool/VNDataBlock.h"
#include "capture/spool/checksum.h"

#include <QDataStream>
#include <QIODevice>
#include <QtEndian>

#include <limits>

namespace vornic {

namespace {

constexpr quint32 syncWord = 0x314A4E56; // "VNJ1"
constexpr qsizetype blockPayloadLength = 34;
constexpr quint8 compressedFlag = 1;

quint64 checksumOfRecord(quint32 kind, QByteArrayView payload)
{
    // The kind counts, so that one bit cannot make a record into another.
    return checksumOf(payload) ^ (quint64 { kind } * 0x9E3779B97F4A7C15ULL);
}

std::optional<JournalRecord> recordAt(QByteArrayView journal, qsizetype position)
{
    if (journal.size() - position < journalHeaderLength)
        return std::nullopt;
    const char *bytes = journal.data() + position;
    const auto kind = qFromLittleEndian<quint32>(bytes + 4);
    const auto length = qFromLittleEndian<quint32>(bytes + 8);
    const qsizetype payload = position + journalHeaderLength;
    if (length > maxJournalPayload || length > journal.size() - payload)
        return std::nullopt;
    const QByteArrayView view = journal.sliced(payload, length);
    if (qFromLittleEndian<quint64>(bytes + 12) != checksumOfRecord(kind, view))
        return std::nullopt;
    return JournalRecord { static_cast<JournalKind>(kind), view, payload + length };
}

} // namespace

QByteArray journalRecord(JournalKind kind, QByteArrayView payload)
{
    QByteArray record(journalHeaderLength, Qt::Uninitialized);
    const auto number = static_cast<quint32>(kind);
    qToLittleEndian(syncWord, record.data());
    qToLittleEndian(number, record.data() + 4);
    qToLittleEndian(static_cast<quint32>(payload.size()), record.data() + 8);
    qToLittleEndian(checksumOfRecord(number, payload), record.data() + 12);
    return record.append(payload);
}

std::optional<JournalRecord> nextJournalRecord(QByteArrayView journal, qsizetype position)
{
    const QByteArray sync = [] {
        QByteArray bytes(sizeof syncWord, Qt::Uninitialized);
        qToLittleEndian(syncWord, bytes.data());
        return bytes;
    }();
    while ((position = journal.indexOf(sync, position)) >= 0) {
        if (const auto record = recordAt(journal, position))
            return record;
        ++position;
    }
    return std::nullopt;
}

QByteArray blockPayload(SpoolKind spool, const VNDataBlock &block)
{
    QByteArray payload;
    payload.reserve(blockPayloadLength);
    QDataStream stream(&payload, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream << static_cast<quint8>(spool) << static_cast<quint8>(block.isCompressed() ? compressedFlag : 0)
           << quint64 { block.offset() } << quint64 { block.length() } << qint64 { block.timeStamp() }
           << quint64 { block.checksum() };
    return payload;
}

std::optional<std::pair<SpoolKind, VNDataBlock>> blockFromPayload(QByteArrayView payload)
{
    if (payload.size() != blockPayloadLength)
        return std::nullopt;
    QDataStream stream(QByteArray::fromRawData(payload.data(), payload.size()));
    stream.setByteOrder(QDataStream::LittleEndian);
    quint8 spool = 0;
    quint8 flags = 0;
    quint64 offset = 0;
    quint64 length = 0;
    qint64 timeStamp = 0;
    quint64 checksum = 0;
    stream >> spool >> flags >> offset >> length >> timeStamp >> checksum;
    constexpr quint64 maxEnd = std::numeric_limits<qint64>::max();
    if (spool > static_cast<quint8>(SpoolKind::Audio) || flags > compressedFlag || offset > maxEnd
        || length > maxEnd - offset)
        return std::nullopt;
    VNDataBlock block(offset, length);
    block.setTimeStamp(timeStamp);
    block.setIsCompressed(flags == compressedFlag);
    block.setChecksum(checksum);
    return std::pair(static_cast<SpoolKind>(spool), block);
}

} // namespace vornic
