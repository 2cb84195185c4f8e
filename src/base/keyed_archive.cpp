#include "base/keyed_archive.h"

#include <QCborArray>
#include <QCborValue>
#include <QIODevice>

#include <array>
#include <limits>
#include <utility>

namespace vornic {

namespace {

/// Enough for a large value's head and the small values that follow, so that it is copied once.
constexpr qsizetype extraCapacity = 256;

/// How a byte string of \a length begins (RFC 8949, section 3): its type in three bits, the number of bytes
/// that tell the length in five, and those bytes, the highest first.
QByteArray byteStringHead(std::uint64_t length)
{
    constexpr int byteString = 2 << 5;
    constexpr int eightBytesFollow = 27;
    QByteArray head(1, static_cast<char>(byteString | eightBytesFollow));
    for (int shift = 56; shift >= 0; shift -= 8)
        head.append(static_cast<char>(length >> shift & 0xFF));
    return head;
}

/// Reads an array of exactly out.size() numbers into \a out; false for anything else.
bool readNumbers(const QCborValue &value, std::span<double> out)
{
    const QCborArray array = value.toArray();
    if (array.size() != static_cast<qsizetype>(out.size()))
        return false;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const QCborValue number = array.at(static_cast<qsizetype>(i));
        if (!number.isDouble() && !number.isInteger())
            return false;
        out[i] = number.toDouble();
    }
    return true;
}

} // namespace

QCborStreamWriter &KeyedArchiver::value(QLatin1StringView key)
{
    if (!m_isOpen)
        m_writer.startMap();
    m_isOpen = true;
    m_writer.append(key);
    return m_writer;
}

void KeyedArchiver::encodeNumbers(QLatin1StringView key, std::initializer_list<double> numbers)
{
    QCborStreamWriter &writer = value(key);
    writer.startArray(numbers.size());
    for (const double number : numbers)
        writer.append(number);
    writer.endArray();
}

void KeyedArchiver::encodeBool(QLatin1StringView key, bool value)
{
    this->value(key).append(value);
}

void KeyedArchiver::encodeInt32(QLatin1StringView key, std::int32_t value)
{
    encodeInt64(key, value);
}

void KeyedArchiver::encodeInt64(QLatin1StringView key, std::int64_t value)
{
    this->value(key).append(qint64 { value });
}

void KeyedArchiver::encodeFloat(QLatin1StringView key, float value)
{
    encodeDouble(key, static_cast<double>(value));
}

void KeyedArchiver::encodeDouble(QLatin1StringView key, double value)
{
    this->value(key).append(value);
}

void KeyedArchiver::encodePoint(QLatin1StringView key, QPointF value)
{
    encodeNumbers(key, { value.x(), value.y() });
}

void KeyedArchiver::encodeRect(QLatin1StringView key, const QRectF &value)
{
    encodeNumbers(key, { value.x(), value.y(), value.width(), value.height() });
}

void KeyedArchiver::encodeString(QLatin1StringView key, const QString &value)
{
    this->value(key).append(value);
}

void KeyedArchiver::encodeData(QLatin1StringView key, const QByteArray &value)
{
    m_bytes.reserve(m_bytes.size() + value.size() + extraCapacity);
    this->value(key).append(value);
}

void KeyedArchiver::encodeData(QLatin1StringView key, std::span<const QByteArrayView> pieces)
{
    qsizetype length = 0;
    for (const QByteArrayView piece : pieces)
        length += piece.size();
    m_bytes.reserve(m_bytes.size() + length + extraCapacity);
    // The writer takes a byte string only where it lies in one piece.
    QIODevice *const device = value(key).device();
    device->write(byteStringHead(static_cast<std::uint64_t>(length)));
    for (const QByteArrayView piece : pieces)
        device->write(piece.data(), piece.size());
}

void KeyedArchiver::encodeObject(QLatin1StringView key, const std::function<void(KeyedArchiver &)> &write)
{
    value(key).startMap();
    // The nested archive's keys go to the same stream; the map is open already.
    write(*this);
    m_writer.endMap();
}

QByteArray KeyedArchiver::bytes()
{
    if (!m_isOpen)
        m_writer.startMap();
    m_isOpen = true;
    if (!m_isClosed)
        m_writer.endMap();
    m_isClosed = true;
    return m_bytes;
}

KeyedUnarchiver::KeyedUnarchiver(const QCborMap &map)
    : m_map(map)
{
}

std::optional<KeyedUnarchiver> KeyedUnarchiver::create(const QByteArray &archive)
{
    QCborParserError error;
    const QCborValue value = QCborValue::fromCbor(archive, &error);
    if (error.error != QCborError::NoError || error.offset != archive.size() || !value.isMap())
        return std::nullopt;
    return KeyedUnarchiver(value.toMap());
}

bool KeyedUnarchiver::containsValueForKey(QLatin1StringView key) const
{
    return m_map.contains(key);
}

bool KeyedUnarchiver::decodeBool(QLatin1StringView key) const
{
    return m_map.value(key).toBool(false);
}

std::int32_t KeyedUnarchiver::decodeInt32(QLatin1StringView key) const
{
    const std::int64_t value = decodeInt64(key);
    return std::in_range<std::int32_t>(value) ? static_cast<std::int32_t>(value) : 0;
}

std::int64_t KeyedUnarchiver::decodeInt64(QLatin1StringView key) const
{
    const QCborValue value = m_map.value(key);
    return value.isInteger() ? value.toInteger() : 0;
}

float KeyedUnarchiver::decodeFloat(QLatin1StringView key) const
{
    const double value = decodeDouble(key);
    // A conversion from a double beyond the range of a float is undefined.
    return value >= -static_cast<double>(std::numeric_limits<float>::max())
            && value <= static_cast<double>(std::numeric_limits<float>::max())
        ? static_cast<float>(value)
        : 0.F;
}

double KeyedUnarchiver::decodeDouble(QLatin1StringView key) const
{
    const QCborValue value = m_map.value(key);
    return value.isDouble() || value.isInteger() ? value.toDouble() : 0.0;
}

QPointF KeyedUnarchiver::decodePoint(QLatin1StringView key) const
{
    std::array<double, 2> xy {};
    return readNumbers(m_map.value(key), xy) ? QPointF(xy[0], xy[1]) : QPointF();
}

QRectF KeyedUnarchiver::decodeRect(QLatin1StringView key) const
{
    std::array<double, 4> xywh {};
    return readNumbers(m_map.value(key), xywh) ? QRectF(xywh[0], xywh[1], xywh[2], xywh[3]) : QRectF();
}

std::optional<QString> KeyedUnarchiver::decodeString(QLatin1StringView key) const
{
    const QCborValue value = m_map.value(key);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

std::optional<QByteArray> KeyedUnarchiver::decodeData(QLatin1StringView key) const
{
    const QCborValue value = m_map.value(key);
    return value.isByteArray() ? std::optional(value.toByteArray()) : std::nullopt;
}

std::optional<KeyedUnarchiver> KeyedUnarchiver::decodeObject(QLatin1StringView key) const
{
    const QCborValue value = m_map.value(key);
    if (!value.isMap())
        return std::nullopt;
    return KeyedUnarchiver(value.toMap());
}

} // namespace vornic
