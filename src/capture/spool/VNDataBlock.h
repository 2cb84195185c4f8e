#pragma once

#include <cstdint>

namespace vornic {

/// Where one spooled block lies: an entry of a spool's index, made when the block is appended; a plain value.
class VNDataBlock
{
public:
    VNDataBlock(std::uint64_t offset, std::uint64_t length)
        : _offset(offset)
        , _dataLength(length)
    {
    }

    /// Bytes from the start of the spool file.
    [[nodiscard]] std::uint64_t offset() const { return _offset; }
    /// Bytes as stored, after compression.
    [[nodiscard]] std::uint64_t length() const { return _dataLength; }
    /// The frame's timestamp in PKTimebase ticks; 0 for audio.
    [[nodiscard]] std::int64_t timeStamp() const { return _timeStamp; }
    void setTimeStamp(std::int64_t ticks) { _timeStamp = ticks; }
    [[nodiscard]] bool isCompressed() const { return _isCompressed; }
    void setIsCompressed(bool compressed) { _isCompressed = compressed; }
    /// checksumOf() the bytes as stored.
    [[nodiscard]] std::uint64_t checksum() const { return m_checksum; }
    void setChecksum(std::uint64_t checksum) { m_checksum = checksum; }
    /// Stands for blocks whose entries are lost: its bytes cannot be read.
    [[nodiscard]] bool isLost() const { return m_isLost; }
    void setIsLost() { m_isLost = true; }

private:
    std::uint64_t _offset;
    std::uint64_t _dataLength;
    std::int64_t _timeStamp = 0;
    std::uint64_t m_checksum = 0;
    bool _isCompressed = false;
    bool m_isLost = false;
};

} // namespace vornic
