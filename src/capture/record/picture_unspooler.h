#pragma once

#include <memory>

namespace vornic {

class JpegPicture;
class KeyedUnarchiver;

/// Reads back the pictures that a PictureSpooler wrote, in the same order.
///
/// Bands that did not change from one record to the next keep their versions and their bytes' memory. Owned by
/// the spool manager, used on its video queue.
class PictureUnspooler
{
public:
    /// The record's picture; null when there is none, when it is damaged, or when it is told by its changes and
    /// the record before was lost.
    [[nodiscard]] std::shared_ptr<const JpegPicture> decode(const KeyedUnarchiver &unarchiver);
    /// A record was lost, or the next one is not its successor: marks and changes stand for nothing until the
    /// next whole picture.
    void forgetPicture() { m_last = nullptr; }

private:
    [[nodiscard]] std::shared_ptr<const JpegPicture> readWhole(const KeyedUnarchiver &unarchiver) const;
    [[nodiscard]] std::shared_ptr<const JpegPicture> readChanges(const KeyedUnarchiver &unarchiver) const;

    std::shared_ptr<const JpegPicture> m_last;
};

} // namespace vornic
