#pragma once

#include "capture/spool/VNDataBlock.h"
#include "capture/spool/recording_description.h"

#include <QByteArrayView>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace vornic {

struct CursorShape;

/// What a journal says, as far as its records are whole.
///
/// Made by readJournal() from what a dead process left; a plain value.
struct JournalContents {
    std::optional<RecordingDescription> description; ///< the last one
    std::map<std::uint64_t, std::shared_ptr<const CursorShape>> pointerShapes;
    /// Oldest first, one behind the other from the start of the spool's file: where entries are missing, a block that
    /// isLost() stands for them.
    std::vector<VNDataBlock> video;
    std::vector<VNDataBlock> audio;
    bool isFinished = false; ///< the recording is no longer wanted
};

/// Reads any bytes: what is damaged, torn off at the end or out of order is left out.
[[nodiscard]] JournalContents readJournal(QByteArrayView journal);

} // namespace vornic
