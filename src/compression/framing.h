#pragma once

#include <QByteArray>

#include <cstring>
#include <utility>

namespace vornic {

/// Writes the length that stands before a block, in the machine's own byte order.
template<typename Length>
void storeLength(QByteArray &framed, Length length)
{
    std::memcpy(framed.data(), &length, sizeof length);
}

/// Reads what storeLength() wrote; \a framed holds at least that many bytes.
template<typename Length>
Length storedLength(const QByteArray &framed)
{
    Length length;
    std::memcpy(&length, framed.constData(), sizeof length);
    return length;
}

/// \a buffer cut to its first \a size bytes, without the memory that was taken in reserve.
inline QByteArray cutTo(QByteArray &&buffer, qsizetype size)
{
    buffer.resize(size);
    buffer.squeeze();
    return std::move(buffer);
}

} // namespace vornic
