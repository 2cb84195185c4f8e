#include "base/keyed_archive.h"

#include <QCborArray>
#include <QCborMap>
#include <QCborValue>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

namespace vornic {
namespace {

using namespace Qt::StringLiterals;

KeyedUnarchiver reader(const QCborMap &map)
{
    return *KeyedUnarchiver::create(map.toCborValue().toCbor());
}

KeyedUnarchiver reader(KeyedArchiver &archiver)
{
    return *KeyedUnarchiver::create(archiver.bytes());
}

TEST(KeyedArchive, EveryTypeComesBack)
{
    KeyedArchiver archiver;
    archiver.encodeBool("bool"_L1, true);
    archiver.encodeInt32("int32"_L1, std::numeric_limits<std::int32_t>::min());
    archiver.encodeInt64("int64"_L1, std::numeric_limits<std::int64_t>::max());
    archiver.encodeFloat("float"_L1, 1.1F);
    archiver.encodeDouble("double"_L1, 1e300);
    archiver.encodePoint("point"_L1, { 1.5, -2 });
    archiver.encodeRect("rect"_L1, { 1, 2.5, -3, 4 });
    archiver.encodeString("string"_L1, QStringLiteral("Größe €"));
    archiver.encodeData("data"_L1, QByteArray("\0\xff", 2));
    archiver.encodeObject("object"_L1, [](KeyedArchiver &object) { object.encodeInt32("inner"_L1, 7); });
    const KeyedUnarchiver read = reader(archiver);
    EXPECT_TRUE(read.decodeBool("bool"_L1));
    EXPECT_EQ(read.decodeInt32("int32"_L1), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(read.decodeInt64("int64"_L1), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(read.decodeFloat("float"_L1), 1.1F);
    EXPECT_EQ(read.decodeDouble("double"_L1), 1e300);
    EXPECT_EQ(read.decodePoint("point"_L1), QPointF(1.5, -2));
    EXPECT_EQ(read.decodeRect("rect"_L1), QRectF(1, 2.5, -3, 4));
    EXPECT_EQ(read.decodeString("string"_L1), QStringLiteral("Größe €"));
    EXPECT_EQ(read.decodeData("data"_L1), QByteArray("\0\xff", 2));
    ASSERT_TRUE(read.decodeObject("object"_L1));
    EXPECT_EQ(read.decodeObject("object"_L1)->decodeInt32("inner"_L1), 7);
}

TEST(KeyedArchive, DataInPiecesAreReadAsOne)
{
    for (const qsizetype length : { 0, 1, 23, 24, 255, 256, 70'000 }) {
        const QByteArray data = QByteArray("piece by piece").repeated(length / 14 + 1).left(length);
        const std::array<QByteArrayView, 3> pieces { QByteArrayView(data).first(length / 3),
                                                     QByteArrayView(),
                                                     QByteArrayView(data).sliced(length / 3) };
        KeyedArchiver archiver;
        archiver.encodeInt32("before"_L1, 1);
        archiver.encodeData("data"_L1, pieces);
        archiver.encodeObject("object"_L1,
                              [&](KeyedArchiver &object) { object.encodeData("inner"_L1, pieces); });
        archiver.encodeInt32("behind"_L1, 2);
        const KeyedUnarchiver read = reader(archiver);
        EXPECT_EQ(read.decodeInt32("before"_L1), 1);
        EXPECT_EQ(read.decodeData("data"_L1), data) << length;
        ASSERT_TRUE(read.decodeObject("object"_L1));
        EXPECT_EQ(read.decodeObject("object"_L1)->decodeData("inner"_L1), data) << length;
        EXPECT_EQ(read.decodeInt32("behind"_L1), 2);
    }
}

void expectZero(const KeyedUnarchiver &read, QLatin1StringView key)
{
    EXPECT_FALSE(read.decodeBool(key)) << key.data();
    EXPECT_EQ(read.decodeInt32(key), 0) << key.data();
    EXPECT_EQ(read.decodeInt64(key), 0) << key.data();
    EXPECT_EQ(read.decodeFloat(key), 0) << key.data();
    EXPECT_EQ(read.decodeDouble(key), 0) << key.data();
    EXPECT_EQ(read.decodePoint(key), QPointF()) << key.data();
    EXPECT_EQ(read.decodeRect(key), QRectF()) << key.data();
    EXPECT_FALSE(read.decodeString(key)) << key.data();
    EXPECT_FALSE(read.decodeData(key)) << key.data();
    EXPECT_FALSE(read.decodeObject(key)) << key.data();
}

TEST(KeyedArchive, AMissingKeyIsZero)
{
    const KeyedUnarchiver read = reader(QCborMap());
    EXPECT_FALSE(read.containsValueForKey("key"_L1));
    expectZero(read, "key"_L1);
}

TEST(KeyedArchive, AWrongTypeReadsAsTheMissingKey)
{
    const QCborMap map {
        { "null"_L1, nullptr },
        { "undefined"_L1, QCborValue() },
        { "array"_L1, QCborArray { 1, 2, "x"_L1 } },
        { "mixed"_L1, QCborArray { 1, "x"_L1 } },
        { "tag"_L1, QCborValue(QCborTag(77), 1) },
        { "simple"_L1, QCborSimpleType(99) },
    };
    const KeyedUnarchiver read = reader(map);
    for (const auto &entry : map) {
        const QByteArray key = entry.first.toString().toLatin1();
        EXPECT_TRUE(read.containsValueForKey(QLatin1StringView(key)));
        expectZero(read, QLatin1StringView(key));
    }
}

TEST(KeyedArchive, TypesAreNotMistakenForEachOther)
{
    const KeyedUnarchiver read = reader(QCborMap { { "string"_L1, "1"_L1 },
                                                   { "data"_L1, QByteArray("1") },
                                                   { "bool"_L1, true },
                                                   { "integer"_L1, 1 },
                                                   { "double"_L1, 1.5 },
                                                   { "map"_L1, QCborMap() } });
    EXPECT_FALSE(read.decodeString("data"_L1));
    EXPECT_FALSE(read.decodeData("string"_L1));
    EXPECT_EQ(read.decodeInt32("string"_L1), 0);
    EXPECT_EQ(read.decodeInt64("double"_L1), 0);
    EXPECT_EQ(read.decodeInt32("bool"_L1), 0);
    EXPECT_EQ(read.decodeDouble("bool"_L1), 0);
    EXPECT_FALSE(read.decodeBool("integer"_L1));
    EXPECT_FALSE(read.decodeObject("integer"_L1));
    EXPECT_FALSE(read.decodeString("map"_L1));
    EXPECT_EQ(read.decodeDouble("integer"_L1), 1); // a whole number is a number
    EXPECT_EQ(read.decodeFloat("double"_L1), 1.5F);
}

TEST(KeyedArchive, NumbersBeyondTheirTypeAreZero)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const KeyedUnarchiver read = reader(QCborMap { { "large"_L1, qint64 { 1 } << 31 },
                                                   { "small"_L1, -(qint64 { 1 } << 31) - 1 },
                                                   { "double"_L1, 1e300 },
                                                   { "infinity"_L1, -infinity },
                                                   { "nan"_L1, std::nan("") } });
    EXPECT_EQ(read.decodeInt32("large"_L1), 0);
    EXPECT_EQ(read.decodeInt32("small"_L1), 0);
    EXPECT_EQ(read.decodeInt64("small"_L1), -(std::int64_t { 1 } << 31) - 1);
    EXPECT_EQ(read.decodeFloat("double"_L1), 0);
    EXPECT_EQ(read.decodeFloat("infinity"_L1), 0);
    EXPECT_EQ(read.decodeFloat("nan"_L1), 0);
    EXPECT_EQ(read.decodeInt32("nan"_L1), 0);
}

TEST(KeyedArchive, PointsAndRectanglesHaveExactlyTheirNumbers)
{
    const KeyedUnarchiver read = reader(QCborMap { { "two"_L1, QCborArray { 1, 2.5 } },
                                                   { "three"_L1, QCborArray { 1, 2, 3 } },
                                                   { "four"_L1, QCborArray { 1, 2, 3, 4 } },
                                                   { "five"_L1, QCborArray { 1, 2, 3, 4, 5 } },
                                                   { "text"_L1, QCborArray { 1, 2, 3, "4"_L1 } } });
    EXPECT_EQ(read.decodePoint("two"_L1), QPointF(1, 2.5));
    EXPECT_EQ(read.decodePoint("three"_L1), QPointF());
    EXPECT_EQ(read.decodePoint("four"_L1), QPointF());
    EXPECT_EQ(read.decodeRect("four"_L1), QRectF(1, 2, 3, 4));
    EXPECT_EQ(read.decodeRect("three"_L1), QRectF());
    EXPECT_EQ(read.decodeRect("five"_L1), QRectF());
    EXPECT_EQ(read.decodeRect("text"_L1), QRectF());
}

TEST(KeyedArchive, EmptyValuesAreValues)
{
    KeyedArchiver archiver;
    archiver.encodeString("string"_L1, QString());
    archiver.encodeData("data"_L1, QByteArray());
    archiver.encodeObject("object"_L1, [](KeyedArchiver &) {});
    const KeyedUnarchiver read = reader(archiver);
    EXPECT_EQ(read.decodeString("string"_L1), "");
    EXPECT_EQ(read.decodeData("data"_L1), "");
    EXPECT_TRUE(read.decodeObject("object"_L1));
}

TEST(KeyedArchive, OnlyExactlyOneMapIsAnArchive)
{
    KeyedArchiver archiver;
    archiver.encodeString("key"_L1, "value");
    const QByteArray whole = archiver.bytes();
    ASSERT_TRUE(KeyedUnarchiver::create(whole));
    EXPECT_FALSE(KeyedUnarchiver::create(whole + whole));
    EXPECT_FALSE(KeyedUnarchiver::create(whole + '\0'));
    for (qsizetype length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(KeyedUnarchiver::create(whole.first(length))) << length;
    EXPECT_FALSE(KeyedUnarchiver::create(QCborValue(QCborArray { 1 }).toCbor()));
    EXPECT_FALSE(KeyedUnarchiver::create(QCborValue(5).toCbor()));
    EXPECT_TRUE(KeyedUnarchiver::create(QCborMap().toCborValue().toCbor()));
}

TEST(KeyedArchive, DeclaredLengthsTakeNoMemory)
{
    // Arrays in arrays, maps in maps and texts that declare more than the bytes could hold.
    for (const char *head : { "9b0000000003ffffff",
                              "bb0000000001ffffff00",
                              "9bffffffffffffffff",
                              "5b000000003fffffff",
                              "7b7fffffffffffffff",
                              "9f",
                              "bf00" }) {
        QByteArray bytes = QByteArray::fromHex("a100");
        for (int depth = 0; depth < 2000; ++depth)
            bytes += QByteArray::fromHex(head);
        EXPECT_FALSE(KeyedUnarchiver::create(bytes)) << head;
    }
}

TEST(KeyedArchive, TextThatIsNoUtf8IsNoArchive)
{
    EXPECT_FALSE(KeyedUnarchiver::create(QByteArray::fromHex("a1616b62fffe")));
}

} // namespace
} // namespace vornic
