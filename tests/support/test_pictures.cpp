#include "support/test_pictures.h"

#include "display/bitmap_image.h"

#include <QFont>
#include <QFontMetrics>
#include <QPainter>
#include <QString>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <random>
#include <span>
#include <string_view>

namespace vornic::test {

namespace {

constexpr std::array<QRgb, 7> knownColours { 0xff000000, 0xffffffff, 0xff808080, 0xffff0000,
                                             0xff00ff00, 0xff0000ff, 0xff000000 };

constexpr std::array<std::string_view, 24> words {
    "the",    "record",  "frame",  "window", "of",     "pointer", "time",  "and",
    "colour", "a",       "sound",  "where",  "movie",  "begins",  "small", "letter",
    "again",  "between", "screen", "open",   "number", "while",   "left",  "turns",
};

using Random = std::mt19937;

unsigned below(Random &random, unsigned limit)
{
    return static_cast<unsigned>(random() % limit);
}

std::span<QRgb> pixelRow(QImage &picture, int y)
{
    return { reinterpret_cast<QRgb *>(picture.scanLine(y)), static_cast<std::size_t>(picture.width()) };
}

QString sentence(Random &random, const QFontMetrics &metrics, int width)
{
    QString line;
    while (metrics.horizontalAdvance(line) < width) {
        const std::string_view word = words[below(random, words.size())];
        line += QString::fromLatin1(word.data(), static_cast<qsizetype>(word.size())) + QLatin1Char(' ');
    }
    return line;
}

} // namespace

std::vector<KnownPatch> knownPatches(QSize size)
{
    constexpr int count = static_cast<int>(knownColours.size());
    std::vector<KnownPatch> patches;
    for (int i = 0; i < count; ++i) {
        const int left = size.width() * i / count;
        const int right = size.width() * (i + 1) / count;
        patches.push_back(
            { QRect(left, 0, right - left, size.height()), knownColours[static_cast<std::size_t>(i)] });
    }
    return patches;
}

QImage knownPicture(QSize size)
{
    QImage picture(size, QImage::Format_RGB32);
    QPainter painter(&picture);
    for (const KnownPatch &patch : knownPatches(size))
        painter.fillRect(patch.rectangle, QColor(patch.colour));
    return picture;
}

QImage numbered(QImage picture, int number)
{
    for (int y = 0; y < numberSquare; ++y) {
        const std::span<QRgb> row = pixelRow(picture, y);
        for (int bit = 0; bit < numberBits; ++bit)
            std::ranges::fill(row.subspan(static_cast<std::size_t>(bit) * numberSquare, numberSquare),
                              (number >> bit & 1) != 0 ? 0xffffffff : 0xff000000);
    }
    return picture;
}

int numberIn(const QImage &picture)
{
    constexpr int middle = numberSquare / 2;
    int number = 0;
    for (int bit = 0; bit < numberBits; ++bit)
        number |= qRed(picture.pixel(bit * numberSquare + middle, middle)) > 127 ? 1 << bit : 0;
    return number;
}

QImage noisePicture(QSize size, std::uint32_t seed)
{
    Random random(seed);
    QImage picture(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        std::ranges::generate(pixelRow(picture, y),
                              [&random] { return 0xff000000U | static_cast<QRgb>(random()); });
    }
    return picture;
}

QImage textPage(QSize size, std::uint32_t seed)
{
    constexpr int margin = 24;
    constexpr unsigned linesBetweenPictures = 23;
    Random random(seed);
    QImage page(size, QImage::Format_RGB32);
    page.fill(Qt::white);
    QPainter painter(&page);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(13);
    painter.setFont(font);
    painter.setPen(QColor(0x20, 0x20, 0x28));
    const QFontMetrics metrics(font);
    unsigned line = 0;
    for (int y = margin; y < size.height(); y += metrics.lineSpacing(), ++line) {
        painter.drawText(margin, y, sentence(random, metrics, size.width() - 3 * margin));
        if (line % linesBetweenPictures == linesBetweenPictures / 2) {
            const int x
                = static_cast<int>(below(random, static_cast<unsigned>(std::max(1, size.width() - 320))));
            painter.drawImage(x, y + 4, smoothPicture(QSize(300, 160)));
            y += 170;
        }
    }
    return page;
}

QImage smoothPicture(QSize size)
{
    const auto angles = [](int count, const auto &angleAt) {
        std::vector<std::complex<float>> result;
        for (int i = 0; i < count; ++i)
            result.push_back(std::polar(1.F, angleAt(static_cast<float>(i))));
        return result;
    };
    // Each colour is the sine of an angle that is a sum of one of x and one of y: a product of unit vectors.
    const int width = size.width();
    const int height = size.height();
    const auto redX = angles(width, [](float x) { return x / 97; });
    const auto redY = angles(height, [](float y) { return std::sin(y / 83); });
    const auto greenX = angles(width, [](float x) { return std::cos(x / 139); });
    const auto greenY = angles(height, [](float y) { return y / 64; });
    const auto blueX = angles(width, [](float x) { return x / 162; });
    const auto blueY = angles(height, [](float y) { return -y / 83; });
    const auto level = [](std::complex<float> a, std::complex<float> b) {
        return static_cast<int>(128 + 127 * (a.real() * b.imag() + a.imag() * b.real()));
    };
    QImage picture(size, QImage::Format_RGB32);
    for (std::size_t y = 0; y < redY.size(); ++y) {
        const auto row = pixelRow(picture, static_cast<int>(y));
        for (std::size_t x = 0; x < redX.size(); ++x)
            row[x] = qRgb(level(redX[x], redY[y]), level(greenX[x], greenY[y]), level(blueX[x], blueY[y]));
    }
    return picture;
}

QImage pixelsOf(const BitmapImage &image)
{
    QImage pixels = image.view().copy();
    auto *const bytes = pixels.bits();
    for (qsizetype alpha = 3; alpha < pixels.sizeInBytes(); alpha += 4)
        bytes[alpha] = 0xff;
    return pixels;
}

} // namespace vornic::test
