#include "codec/bgrx_to_yuv.h"
#include "codec/planar_picture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

namespace vornic::testing {
namespace {

/// True BT.709 in limited range, not rounded.
struct Sample {
    double y;
    double cb;
    double cr;
};

Sample reference(double red, double green, double blue)
{
    const double luma = (0.2126 * red + 0.7152 * green + 0.0722 * blue) / 255;
    return { 16 + 219 * luma,
             128 + 224 * (blue / 255 - luma) / 1.8556,
             128 + 224 * (red / 255 - luma) / 1.5748 };
}

/// Rounded right, but for the rare value that lies within a hundredth of the middle between two steps.
constexpr double tolerance = 0.5 + 0.0125;

struct Picture {
    int width;
    int height;
    std::vector<uchar> bytes;

    Picture(int pictureWidth, int pictureHeight)
        : width(pictureWidth)
        , height(pictureHeight)
        , bytes(static_cast<std::size_t>(4 * width * height))
    {
    }
    [[nodiscard]] BgrxView view() const { return { bytes.data(), qsizetype { 4 } * width, width, height }; }
    [[nodiscard]] uchar *pixel(int x, int y) { return &bytes[static_cast<std::size_t>(4 * (y * width + x))]; }
    void fillRandomly(unsigned seed)
    {
        std::mt19937 random(seed);
        for (uchar &byte : bytes)
            byte = static_cast<uchar>(random());
    }
};

int at(const PlanarPicture &picture, int plane, int x, int y)
{
    return picture.data(plane)[y * picture.stride(plane) + x];
}

bool sameSamples(const PlanarPicture &a, const PlanarPicture &b)
{
    for (int plane = 0; plane < 3; ++plane) {
        for (int y = 0; y < a.planeHeight(plane); ++y) {
            const auto bytes = static_cast<std::size_t>(a.planeWidth(plane));
            if (std::memcmp(a.data(plane) + y * a.stride(plane), b.data(plane) + y * b.stride(plane), bytes)
                != 0)
                return false;
        }
    }
    return true;
}

class EitherCode : public ::testing::TestWithParam<ConversionCode>
{
};

TEST_P(EitherCode, flatColoursAreRoundedRight)
{
    std::vector<int> levels;
    for (int level = 0; level < 256; level += 5)
        levels.push_back(level);
    const int count = static_cast<int>(levels.size());
    Picture picture(2 * count, 2);
    PlanarPicture planes(picture.width, picture.height);
    for (int red = 0; red < 256; ++red) {
        for (const int green : levels) {
            for (int i = 0; i < count; ++i) {
                const uchar bgrx[4] = { static_cast<uchar>(levels[static_cast<std::size_t>(i)]),
                                        static_cast<uchar>(green),
                                        static_cast<uchar>(red),
                                        static_cast<uchar>(i * 5) };
                for (int corner = 0; corner < 4; ++corner)
                    std::memcpy(picture.pixel(2 * i + corner % 2, corner / 2), bgrx, 4);
            }
            convertBgrxToYuv(picture.view(), planes, 0, 2, GetParam());
            for (int i = 0; i < count; ++i) {
                const auto expected = reference(red, green, levels[static_cast<std::size_t>(i)]);
                ASSERT_LE(std::abs(at(planes, 0, 2 * i, 0) - expected.y), tolerance);
                ASSERT_LE(std::abs(at(planes, 0, 2 * i + 1, 1) - expected.y), tolerance);
                ASSERT_LE(std::abs(at(planes, 1, i, 0) - expected.cb), tolerance);
                ASSERT_LE(std::abs(at(planes, 2, i, 0) - expected.cr), tolerance);
            }
        }
    }
}

TEST_P(EitherCode, blackWhiteAndGreysAreExactAndHaveNoColour)
{
    Picture picture(512, 2);
    for (int x = 0; x < 512; ++x) {
        std::memset(picture.pixel(x, 0), x / 2, 4);
        std::memset(picture.pixel(x, 1), x / 2, 4);
    }
    PlanarPicture planes(512, 2);
    convertBgrxToYuv(picture.view(), planes, 0, 2, GetParam());
    for (int level = 0; level < 256; ++level) {
        EXPECT_EQ(at(planes, 0, 2 * level, 0), std::lround(16 + 219 * level / 255.0));
        EXPECT_EQ(at(planes, 1, level, 0), 128);
        EXPECT_EQ(at(planes, 2, level, 0), 128);
    }
}

TEST_P(EitherCode, chromaIsTheMeanOfFourPixels)
{
    Picture picture(64, 8);
    picture.fillRandomly(1);
    PlanarPicture planes(64, 8);
    convertBgrxToYuv(picture.view(), planes, 0, 8, GetParam());
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 32; ++x) {
            double sums[3] = {};
            for (int corner = 0; corner < 4; ++corner) {
                const uchar *pixel = picture.pixel(2 * x + corner % 2, 2 * y + corner / 2);
                for (int channel = 0; channel < 3; ++channel)
                    sums[channel] += pixel[channel] / 4.0;
            }
            const auto expected = reference(sums[2], sums[1], sums[0]);
            EXPECT_LE(std::abs(at(planes, 1, x, y) - expected.cb), tolerance);
            EXPECT_LE(std::abs(at(planes, 2, x, y) - expected.cr), tolerance);
        }
    }
}

TEST_P(EitherCode, oddSizesRepeatTheLastColumnAndRow)
{
    Picture odd(37, 5);
    odd.fillRandomly(2);
    Picture even(38, 6);
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 38; ++x)
            std::memcpy(even.pixel(x, y), odd.pixel(std::min(x, 36), std::min(y, 4)), 4);
    PlanarPicture fromOdd(37, 5);
    PlanarPicture fromEven(38, 6);
    ASSERT_EQ(fromOdd.width(), 38);
    ASSERT_EQ(fromOdd.height(), 6);
    convertBgrxToYuv(odd.view(), fromOdd, 0, 5, GetParam());
    convertBgrxToYuv(even.view(), fromEven, 0, 6, GetParam());
    EXPECT_TRUE(sameSamples(fromOdd, fromEven));
}

INSTANTIATE_TEST_SUITE_P(Conversion,
                         EitherCode,
                         ::testing::Values(ConversionCode::Fastest, ConversionCode::Portable));

TEST(BgrxToYuv, bothCodesAgreeToTheBitAtEverySize)
{
    for (int width = 1; width <= 70; ++width) {
        for (int height = 1; height <= 4; ++height) {
            Picture picture(width, height);
            picture.fillRandomly(static_cast<unsigned>(100 * width + height));
            PlanarPicture fastest(width, height);
            PlanarPicture portable(width, height);
            convertBgrxToYuv(picture.view(), fastest, 0, height, ConversionCode::Fastest);
            convertBgrxToYuv(picture.view(), portable, 0, height, ConversionCode::Portable);
            ASSERT_TRUE(sameSamples(fastest, portable)) << width << " x " << height;
        }
    }
}

TEST(BgrxToYuv, rowsAreConvertedAloneAndOthersLeft)
{
    Picture picture(50, 20);
    picture.fillRandomly(7);
    PlanarPicture whole(50, 20);
    convertBgrxToYuv(picture.view(), whole, 0, 20);
    PlanarPicture part(50, 20);
    std::memset(part.data(0), 1, part.byteCount());
    convertBgrxToYuv(picture.view(), part, 4, 6);
    for (int y = 0; y < 20; ++y) {
        const bool isConverted = y >= 4 && y < 10;
        for (int x = 0; x < 50; ++x) {
            ASSERT_EQ(at(part, 0, x, y), isConverted ? at(whole, 0, x, y) : 1);
            ASSERT_EQ(at(part, 1, x / 2, y / 2), isConverted ? at(whole, 1, x / 2, y / 2) : 1);
            ASSERT_EQ(at(part, 2, x / 2, y / 2), isConverted ? at(whole, 2, x / 2, y / 2) : 1);
        }
    }
}

} // namespace
} // namespace vornic::testing
