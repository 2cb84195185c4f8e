#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <cstdint>
#include <optional>

namespace vornic {

class VNDataBlock;

/// What a record of the journal holds; the numbers are on disk.
enum class JournalKind : std::uint32_t {
    Description = 1, ///< a RecordingDescription, as a keyed archive
    PointerShape,    ///< a shape with the index that frame records know it by
    Block,           ///< the entry of one block of a spool
    Finished,        ///< the recording is no longer wanted: its movie is complete, or its user deleted it
};

/// The two spools of a recording; the numbers are on disk.
enum class SpoolKind : std::uint8_t { Video, Audio };

/// The journal is one record behind the other: a sync word, kind, length and checksum of what follows, then
/// the payload; all numbers little-endian. Pure functions.

inline constexpr qsizetype journalHeaderLength = 20;
/// No record is longer; what claims to be is damaged.
inline constexpr qsizetype maxJournalPayload = 1'048'576;

[[nodiscard]] QByteArray journalRecord(JournalKind kind, QByteArrayView payload);

struct JournalRecord {
    JournalKind kind = JournalKind::Description;
    QByteArrayView payload; ///< in the bytes that were read
    qsizetype end = 0;      ///< of the record in those bytes
};
/// The first whole record of \a journal at or behind \a position; nothing when there is none.
[[nodiscard]] std::optional<JournalRecord> nextJournalRecord(QByteArrayView journal, qsizetype position);

[[nodiscard]] QByteArray blockPayload(SpoolKind spool, const VNDataBlock &block);
/// Nothing where \a payload holds no entry, or one that no program writes.
[[nodiscard]] std::optional<std::pair<SpoolKind, VNDataBlock>> blockFromPayload(QByteArrayView payload);

} // namespace vornic
