#pragma once

#include "codec/PKMuxerContext.h"

#include <QDateTime>
#include <QRectF>

#include <optional>

namespace vornic {

class KeyedArchiver;
class KeyedUnarchiver;

/// What a recording is, beside its blocks: enough to make its movie in another process.
///
/// Made by the spool manager, written to the journal whenever it changes; a plain value.
struct RecordingDescription {
    QDateTime start;           ///< by the wall clock, UTC
    double monotonicStart = 0; ///< seconds of the absolute clock, which another boot does not share
    QRectF rectangle;          ///< screen coordinates (y up), device pixels
    bool isPart = false;       ///< a rectangle, not the full display
    int quality = 0;           ///< a RecordQuality
    /// The movie's file, picture and sound; nothing before the capture has begun.
    std::optional<PKMuxerContext> movie;

    void encodeWithCoder(KeyedArchiver &archiver) const;
    /// Nothing where it was written by a program that this one does not understand.
    [[nodiscard]] static std::optional<RecordingDescription>
    createWithCoder(const KeyedUnarchiver &unarchiver);
};

} // namespace vornic
