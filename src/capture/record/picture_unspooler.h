#pragma once

#include <memory>

namespace vornic {

class JpegPicture;
class KeyedUnarchiver;

/// Reads back the pictures that a PictureSpooler wrote, in the same order.
///
/// Owned by the spool manager, used on its video queue.
class PictureUnspooler
{
public:
    /// The record's picture; null when there is none, or when it is a mark after a record that was lost.
    [[nodiscard]] std::shared_ptr<const JpegPicture> decode(const KeyedUnarchiver &unarchiver);
    /// A record was lost, or the next one is not its successor: marks stand for nothing until the next whole
    /// picture.
    void forgetPicture() { m_last = nullptr; }

private:
    std::shared_ptr<const JpegPicture> m_last;
};

} // namespace vornic
