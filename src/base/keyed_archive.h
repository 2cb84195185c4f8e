#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QCborMap>
#include <QCborStreamWriter>
#include <QLatin1StringView>
#include <QPointF>
#include <QRectF>
#include <QString>

#include <concepts>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <span>

namespace vornic {

class KeyedArchiver;
class KeyedUnarchiver;

/// A type whose objects can write themselves to a keyed archive and be made again from it.
template<typename T>
concept Archivable = requires(const T &object, KeyedArchiver &archiver, const KeyedUnarchiver &unarchiver)
{
    object.encodeWithCoder(archiver);
    T::createWithCoder(unarchiver);
};

/// Writes values under string keys into one CBOR map (RFC 8949).
///
/// Made on the stack for one archive, on any thread. Points and rectangles are arrays of two and four
/// doubles.
class KeyedArchiver
{
public:
    void encodeBool(QLatin1StringView key, bool value);
    void encodeInt32(QLatin1StringView key, std::int32_t value);
    void encodeInt64(QLatin1StringView key, std::int64_t value);
    void encodeFloat(QLatin1StringView key, float value);
    void encodeDouble(QLatin1StringView key, double value);
    void encodePoint(QLatin1StringView key, QPointF value);
    void encodeRect(QLatin1StringView key, const QRectF &value);
    void encodeString(QLatin1StringView key, const QString &value);
    void encodeData(QLatin1StringView key, const QByteArray &value);
    /// The same for data that lie in \a pieces, in their order, which are copied nowhere else.
    void encodeData(QLatin1StringView key, std::span<const QByteArrayView> pieces);
    /// Writes a nested archive: \a write fills its keys.
    void encodeObject(QLatin1StringView key, const std::function<void(KeyedArchiver &)> &write);

    /// The finished archive; nothing may be written after the first call.
    [[nodiscard]] QByteArray bytes();

private:
    QByteArray m_bytes;
    QCborStreamWriter m_writer { &m_bytes };
    bool m_isOpen = false;
    bool m_isClosed = false;

    /// Opens the map if this is its first entry, writes \a key, and returns the writer for the value.
    QCborStreamWriter &value(QLatin1StringView key);
    void encodeNumbers(QLatin1StringView key, std::initializer_list<double> numbers);
};

/// Reads the values of a keyed archive back.
///
/// A key that is missing, or whose value is of another type than the one asked for, reads as that type's zero
/// value. Made on the stack from the bytes of one archive; copyable, on any thread.
class KeyedUnarchiver
{
public:
    /// Nothing where \a archive is not exactly one CBOR map, for example damaged, cut short or followed by
    /// more bytes.
    [[nodiscard]] static std::optional<KeyedUnarchiver> create(const QByteArray &archive);

    [[nodiscard]] bool containsValueForKey(QLatin1StringView key) const;
    [[nodiscard]] bool decodeBool(QLatin1StringView key) const;
    /// A stored number outside the 32-bit range reads as 0.
    [[nodiscard]] std::int32_t decodeInt32(QLatin1StringView key) const;
    [[nodiscard]] std::int64_t decodeInt64(QLatin1StringView key) const;
    [[nodiscard]] float decodeFloat(QLatin1StringView key) const;
    [[nodiscard]] double decodeDouble(QLatin1StringView key) const;
    [[nodiscard]] QPointF decodePoint(QLatin1StringView key) const;
    [[nodiscard]] QRectF decodeRect(QLatin1StringView key) const;
    [[nodiscard]] std::optional<QString> decodeString(QLatin1StringView key) const;
    [[nodiscard]] std::optional<QByteArray> decodeData(QLatin1StringView key) const;
    [[nodiscard]] std::optional<KeyedUnarchiver> decodeObject(QLatin1StringView key) const;

private:
    explicit KeyedUnarchiver(const QCborMap &map);

    QCborMap m_map;
};

/// The whole archive of one object.
template<Archivable T>
[[nodiscard]] QByteArray archivedData(const T &object)
{
    KeyedArchiver archiver;
    object.encodeWithCoder(archiver);
    return archiver.bytes();
}

} // namespace vornic
