#pragma once

#include <QByteArray>
#include <QCborArray>
#include <QCborMap>
#include <QCborValue>
#include <QString>

#include <limits>
#include <ostream>
#include <utility>
#include <vector>

namespace vornic::test {

/// Options that can be decoded and that nobody has chosen, as archives.
struct HostileArchive {
    const char *name;
    QByteArray bytes;

    friend std::ostream &operator<<(std::ostream &stream, const HostileArchive &archive)
    {
        return stream << archive.name;
    }
};

/// Options with a logo that is drawn, with \a option and \a logo in place of good values.
inline QByteArray archiveWith(const QCborMap &option, const QCborMap &logo)
{
    const QCborMap color { { "red", 65535 }, { "green", 0 }, { "blue", 0 }, { "alpha", 65535 } };
    QCborMap logoMap { { "mLogoValidate", true },       { "mLogoType", 0 },
                       { "mLogoText", "Sample Text" },  { "mLogoPosition", QCborArray { 10, 10 } },
                       { "mLogoScale", 1.0 },           { "mLogoTransparency", 255.0 },
                       { "mLogoFontFillColor", color }, { "mLogoFontStrokeColor", color },
                       { "mLogoRotation", 0 } };
    for (const auto &entry : logo)
        logoMap[entry.first.toString()] = entry.second;
    QCborMap map { { "_logoContext", logoMap }, { "_recordBounds", QCborArray { 100, 100, 300, 200 } },
                   { "_recordQuality", 0 },     { "_recordRegion", 1 },
                   { "_enableAudio", false },   { "_showInFinder", false },
                   { "_openRecorded", false } };
    for (const auto &entry : option)
        map[entry.first.toString()] = entry.second;
    return map.toCborValue().toCbor();
}

inline QByteArray logoWith(const QCborMap &logo)
{
    return archiveWith({}, logo);
}

inline QByteArray rectangleOf(double x, double y, double width, double height)
{
    return archiveWith({ { "_recordBounds", QCborArray { x, y, width, height } } }, {});
}

inline QByteArray fontWith(const QCborMap &attributes)
{
    QCborMap font { { "family", "DejaVu Sans" }, { "pixelSize", 20 }, { "weight", 400 } };
    for (const auto &entry : attributes)
        font[entry.first.toString()] = entry.second;
    return logoWith({ { "mLogoFontAttr", QCborMap { { "font", font } } } });
}

/// A PNG of one bit a pixel that says it has this size; of its pixels there are none.
inline QByteArray pngHeader(quint32 width, quint32 height)
{
    QByteArray header("IHDR");
    for (const quint32 side : { width, height })
        for (int shift = 24; shift >= 0; shift -= 8)
            header += static_cast<char>(side >> shift);
    header += QByteArray::fromHex("0100000000");
    quint32 crc = 0xffffffff;
    for (const char byte : std::as_const(header)) {
        crc ^= static_cast<quint8>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xedb88320 : 0);
    }
    QByteArray png = QByteArray::fromHex("89504e470d0a1a0a0000000d") + header;
    for (int shift = 24; shift >= 0; shift -= 8)
        png += static_cast<char>(~crc >> shift);
    return png + QByteArray::fromHex("0000000049454e44ae426082");
}

/// A PNG of 64 x 48 pixels, and what it is drawn with.
inline QByteArray pictureWith(QCborMap logo)
{
    static const QByteArray png = QByteArray::fromBase64(
        "iVBORw0KGgoAAAANSUhEUgAAAEAAAAAwCAIAAAAuKetIAAAAQ0lEQVR42u3PQQkAAAgEsMtkJsMaywp+hcEKLNP1"
        "WgQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQErhZSXmjxXjGBiwAAAABJRU5ErkJggg==");
    logo[QStringLiteral("mLogoType")] = 1;
    if (!logo.contains(QStringLiteral("mLogoImage")))
        logo[QStringLiteral("mLogoImage")] = QCborMap { { "png", png } };
    return logoWith(logo);
}

inline std::vector<HostileArchive> hostileRectangles()
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
    return {
        { "a rectangle of 1e9", rectangleOf(0, 0, 1e9, 1e9) },
        { "a rectangle of 40,000", rectangleOf(0, 0, 40000, 40000) },
        { "a rectangle of 1e300", rectangleOf(0, 0, 1e300, 1e300) },
        { "an infinite rectangle", rectangleOf(0, 0, infinity, infinity) },
        { "a rectangle of no numbers", rectangleOf(notANumber, notANumber, notANumber, notANumber) },
        { "a rectangle less than nothing", rectangleOf(1e9, 1e9, -1e9, -1e9) },
        { "a rectangle infinitely far", rectangleOf(-infinity, infinity, 800, 600) },
    };
}

inline std::vector<HostileArchive> hostileTexts()
{
    const QString million(1'000'000, QLatin1Char('W'));
    return {
        { "a text of a million letters", logoWith({ { "mLogoText", million } }) },
        { "a text of a million signs", logoWith({ { "mLogoText", QString(1'000'000, QChar(0x4E16)) } }) },
        { "a text of a million lines", logoWith({ { "mLogoText", QString(1'000'000, QLatin1Char('\n')) } }) },
        { "a text of a million controls", logoWith({ { "mLogoText", QString(1'000'000, QChar(0x202E)) } }) },
        { "a long text at a great scale", logoWith({ { "mLogoText", million }, { "mLogoScale", 3e38 } }) },
        { "a long text turned", logoWith({ { "mLogoText", million }, { "mLogoRotation", 33 } }) },
        { "a font of 10,000 pixels", fontWith({ { "pixelSize", 10000 } }) },
        { "a font of 2^31 - 1 pixels", fontWith({ { "pixelSize", 0x7fffffff } }) },
        { "a font of 1e300 points", fontWith({ { "pixelSize", 0 }, { "pointSize", 1e300 } }) },
        { "a family of a million letters", fontWith({ { "family", million } }) },
        { "a style of a million letters", fontWith({ { "styleName", million } }) },
        { "a font of no weight", fontWith({ { "weight", -0x7fffffff }, { "style", 0x7fffffff } }) },
    };
}

inline std::vector<HostileArchive> hostileNumbers()
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
    constexpr qint64 least = std::numeric_limits<qint64>::min();
    return {
        { "a scale of 1e300", logoWith({ { "mLogoScale", 1e300 } }) },
        { "a scale of 3e38", logoWith({ { "mLogoScale", 3e38 } }) },
        { "a scale of -3e38", logoWith({ { "mLogoScale", -3e38 } }) },
        { "a scale of 1e6", logoWith({ { "mLogoScale", 1e6 } }) },
        { "a scale of 1e-38", logoWith({ { "mLogoScale", 1e-38 } }) },
        { "a scale that is no number", logoWith({ { "mLogoScale", notANumber } }) },
        { "an endless rotation", logoWith({ { "mLogoRotation", least } }) },
        { "an infinite position", logoWith({ { "mLogoPosition", QCborArray { infinity, -infinity } } }) },
        { "a position of 1e300", logoWith({ { "mLogoPosition", QCborArray { 1e300, 1e300 } } }) },
        { "an opacity of 1e38", logoWith({ { "mLogoTransparency", 1e38 } }) },
        { "numbers for what there is none of",
          archiveWith({ { "_recordRegion", -0x7fffffff }, { "_recordQuality", 0x7fffffff } },
                      { { "mLogoType", 0x7fffffff } }) },
    };
}

inline std::vector<HostileArchive> hostilePictures()
{
    const auto declared = [](quint32 width, quint32 height) {
        return pictureWith({ { "mLogoImage", QCborMap { { "png", pngHeader(width, height) } } } });
    };
    return {
        { "a picture at a scale of 3e38", pictureWith({ { "mLogoScale", 3e38 } }) },
        { "a picture at a scale of 1e6", pictureWith({ { "mLogoScale", 1e6 } }) },
        { "a picture at a scale of -1e6", pictureWith({ { "mLogoScale", -1e6 }, { "mLogoRotation", 44 } }) },
        { "a picture at a scale of 1e-30",
          pictureWith({ { "mLogoScale", 1e-30 }, { "mLogoRotation", 44 } }) },
        { "a picture at 1e300", pictureWith({ { "mLogoPosition", QCborArray { 1e300, -1e300 } } }) },
        { "a small picture far away",
          pictureWith({ { "mLogoPosition", QCborArray { 1e18, -1e18 } },
                        { "mLogoScale", 0.1 },
                        { "mLogoRotation", 30 } }) },
        { "a picture said to be 30,000 x 30,000", declared(30000, 30000) },
        { "a picture said to be a line", declared(1'000'000, 1) },
    };
}

inline std::vector<HostileArchive> hostileArchives()
{
    std::vector<HostileArchive> all = hostileRectangles();
    for (const auto &more : { hostileTexts(), hostileNumbers(), hostilePictures() })
        all.insert(all.end(), more.begin(), more.end());
    return all;
}

} // namespace vornic::test
