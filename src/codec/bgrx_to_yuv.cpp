#include "codec/bgrx_to_yuv.h"

#include "codec/planar_picture.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#if defined(__x86_64__)
#    include <immintrin.h>
#endif

namespace vornic {

namespace {

/// Coefficients are fixed point with this many bits: as many as fit a 16-bit factor.
constexpr int fractionBits = 15;

constexpr int fixedPoint(double value)
{
    return static_cast<int>(value * (1 << fractionBits) + (value < 0 ? -0.5 : 0.5));
}

// BT.709: Y' = 0.2126 R' + 0.7152 G' + 0.0722 B', Cb = (B' - Y') / 1.8556, Cr = (R' - Y') / 1.5748,
// in 219 steps of luma and 224 of chroma. The factor of green is what the other two leave, so that white is
// exactly 235 and greys have no chroma.
constexpr double lumaStep = 219.0 / 255.0;
constexpr double chromaStep = 224.0 / 255.0;
constexpr int yR = fixedPoint(0.2126 * lumaStep);
constexpr int yB = fixedPoint(0.0722 * lumaStep);
constexpr int yG = fixedPoint(lumaStep) - yR - yB;
constexpr int cbR = fixedPoint(-0.2126 / 1.8556 * chromaStep);
constexpr int cbB = fixedPoint(0.5 * chromaStep);
constexpr int cbG = -cbR - cbB;
constexpr int crB = fixedPoint(-0.0722 / 1.5748 * chromaStep);
constexpr int crR = fixedPoint(0.5 * chromaStep);
constexpr int crG = -crR - crB;

constexpr int lumaBias = (16 << fractionBits) + (1 << (fractionBits - 1));
/// Chroma is made from the sum of four pixels: two more bits.
constexpr int chromaShift = fractionBits + 2;
constexpr int chromaBias = (128 << chromaShift) + (1 << (chromaShift - 1));

/// Two rows of pixels and where their samples go.
struct RowPair {
    const uchar *top;
    const uchar *bottom;
    uchar *yTop;
    uchar *yBottom;
    uchar *cb;
    uchar *cr;

    [[nodiscard]] RowPair after(qsizetype pixels) const
    {
        return { top + 4 * pixels, bottom + 4 * pixels, yTop + pixels,
                 yBottom + pixels, cb + pixels / 2,     cr + pixels / 2 };
    }
};

inline uchar lumaOf(const uchar *pixel)
{
    return static_cast<uchar>((yB * pixel[0] + yG * pixel[1] + yR * pixel[2] + lumaBias) >> fractionBits);
}

/// \a width is even.
void convertPortably(const RowPair &rows, qsizetype width)
{
    for (qsizetype x = 0; x < width; ++x) {
        rows.yTop[x] = lumaOf(rows.top + 4 * x);
        rows.yBottom[x] = lumaOf(rows.bottom + 4 * x);
    }
    for (qsizetype x = 0; x < width / 2; ++x) {
        const uchar *top = rows.top + 8 * x;
        const uchar *bottom = rows.bottom + 8 * x;
        const int blue = top[0] + top[4] + bottom[0] + bottom[4];
        const int green = top[1] + top[5] + bottom[1] + bottom[5];
        const int red = top[2] + top[6] + bottom[2] + bottom[6];
        rows.cb[x] = static_cast<uchar>((cbB * blue + cbG * green + cbR * red + chromaBias) >> chromaShift);
        rows.cr[x] = static_cast<uchar>((crB * blue + crG * green + crR * red + chromaBias) >> chromaShift);
    }
}

#if defined(__x86_64__)

/// Two 16-bit factors for the two halves of a 32-bit lane.
constexpr int factorPair(int low, int high)
{
    return static_cast<int>((static_cast<std::uint32_t>(high) << 16)
                            | (static_cast<std::uint32_t>(low) & 0xFFFF));
}

__attribute__((target("avx2"))) inline __m256i eightPixels(const uchar *pixels)
{
    __m256i result;
    std::memcpy(&result, pixels, sizeof result);
    return result;
}

__attribute__((target("avx2"))) inline __m256i
weighted(__m256i blueRed, __m256i green, int blueRedFactors, int greenFactors, int bias)
{
    const __m256i products = _mm256_add_epi32(_mm256_madd_epi16(blueRed, _mm256_set1_epi32(blueRedFactors)),
                                              _mm256_madd_epi16(green, _mm256_set1_epi32(greenFactors)));
    return _mm256_add_epi32(products, _mm256_set1_epi32(bias));
}

__attribute__((target("avx2"))) inline __m256i lumaOf(__m256i blueRed, __m256i green)
{
    return _mm256_srli_epi32(weighted(blueRed, green, factorPair(yB, yR), factorPair(yG, 0), lumaBias),
                             fractionBits);
}

/// Sixteen pixels of each row at a time. A pixel is split into 16-bit pairs blue-red and green-unused.
__attribute__((target("avx2"))) void convertWithAvx2(const RowPair &rows, qsizetype width)
{
    const __m256i lowBytes = _mm256_set1_epi16(0x00FF);
    const __m256i lumaOrder = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    qsizetype x = 0;
    for (; x + 16 <= width; x += 16) {
        const __m256i top0 = eightPixels(rows.top + 4 * x);
        const __m256i top1 = eightPixels(rows.top + 4 * x + 32);
        const __m256i bottom0 = eightPixels(rows.bottom + 4 * x);
        const __m256i bottom1 = eightPixels(rows.bottom + 4 * x + 32);
        const __m256i topBr0 = _mm256_and_si256(top0, lowBytes);
        const __m256i topBr1 = _mm256_and_si256(top1, lowBytes);
        const __m256i bottomBr0 = _mm256_and_si256(bottom0, lowBytes);
        const __m256i bottomBr1 = _mm256_and_si256(bottom1, lowBytes);
        const __m256i topG0 = _mm256_srli_epi16(top0, 8);
        const __m256i topG1 = _mm256_srli_epi16(top1, 8);
        const __m256i bottomG0 = _mm256_srli_epi16(bottom0, 8);
        const __m256i bottomG1 = _mm256_srli_epi16(bottom1, 8);

        const __m256i topLuma = _mm256_packs_epi32(lumaOf(topBr0, topG0), lumaOf(topBr1, topG1));
        const __m256i bottomLuma
            = _mm256_packs_epi32(lumaOf(bottomBr0, bottomG0), lumaOf(bottomBr1, bottomG1));
        const __m256i luma = _mm256_permutevar8x32_epi32(_mm256_packus_epi16(topLuma, bottomLuma), lumaOrder);
        std::memcpy(rows.yTop + x, &luma, 16);
        const __m128i lowerLuma = _mm256_extracti128_si256(luma, 1);
        std::memcpy(rows.yBottom + x, &lowerLuma, 16);

        // Sums of four stay below 2^10, so 32-bit additions never carry from one half of a lane to the other.
        const __m256i blueRed
            = _mm256_hadd_epi32(_mm256_add_epi16(topBr0, bottomBr0), _mm256_add_epi16(topBr1, bottomBr1));
        const __m256i green
            = _mm256_hadd_epi32(_mm256_add_epi16(topG0, bottomG0), _mm256_add_epi16(topG1, bottomG1));
        const __m256i cb = _mm256_srli_epi32(
            weighted(blueRed, green, factorPair(cbB, cbR), factorPair(cbG, 0), chromaBias), chromaShift);
        const __m256i cr = _mm256_srli_epi32(
            weighted(blueRed, green, factorPair(crB, crR), factorPair(crG, 0), chromaBias), chromaShift);
        const __m256i words = _mm256_packs_epi32(cb, cr);
        const __m256i bytes = _mm256_packus_epi16(words, words);
        const __m128i chroma
            = _mm_unpacklo_epi16(_mm256_castsi256_si128(bytes), _mm256_extracti128_si256(bytes, 1));
        const std::array<std::int64_t, 2> halves { _mm_cvtsi128_si64(chroma), _mm_extract_epi64(chroma, 1) };
        std::memcpy(rows.cb + x / 2, halves.data(), 8);
        std::memcpy(rows.cr + x / 2, &halves[1], 8);
    }
    convertPortably(rows.after(x), width - x);
}

#endif

using RowPairFunction = void (*)(const RowPair &, qsizetype);

RowPairFunction functionFor(ConversionCode code)
{
#if defined(__x86_64__)
    if (code == ConversionCode::Fastest && __builtin_cpu_supports("avx2"))
        return convertWithAvx2;
#else
    Q_UNUSED(code)
#endif
    return convertPortably;
}

} // namespace

void convertBgrxToYuv(
    const BgrxView &view, PlanarPicture &picture, int firstRow, int rowCount, ConversionCode code)
{
    const RowPairFunction convert = functionFor(code);
    const qsizetype evenWidth = view.width & ~1;
    const int endRow = std::min(firstRow + rowCount, view.height);
    for (int row = firstRow; row < endRow; row += 2) {
        const uchar *top = view.bits + row * view.stride;
        uchar *luma = picture.data(0) + row * picture.stride(0);
        const RowPair rows {
            .top = top,
            .bottom = row + 1 < view.height ? top + view.stride : top,
            .yTop = luma,
            .yBottom = luma + picture.stride(0),
            .cb = picture.data(1) + row / 2 * picture.stride(1),
            .cr = picture.data(2) + row / 2 * picture.stride(2),
        };
        convert(rows, evenWidth);
        if (evenWidth < view.width) {
            std::array<uchar, 8> lastTop {};
            std::array<uchar, 8> lastBottom {};
            for (std::size_t half : { 0U, 4U }) {
                std::memcpy(&lastTop[half], rows.top + 4 * evenWidth, 4);
                std::memcpy(&lastBottom[half], rows.bottom + 4 * evenWidth, 4);
            }
            RowPair last = rows.after(evenWidth);
            last.top = lastTop.data();
            last.bottom = lastBottom.data();
            convertPortably(last, 2);
        }
    }
}

} // namespace vornic
