#pragma once

#include <QtGlobal>

namespace vornic {

class PlanarPicture;

/// A borrowed picture of 32-bit pixels, bytes B, G, R, unused.
struct BgrxView {
    const uchar *bits;
    qsizetype stride;
    int width;
    int height;
};

/// Which code converts. The results are the same to the last bit.
enum class ConversionCode {
    Fastest, ///< the best that this processor runs
    Portable,
};

/// Converts \a rowCount rows from \a firstRow (even) on into \a picture, which has the view's size rounded up
/// to even: BT.709, limited range, correctly rounded to within a hundredth of a step; chroma is the mean of
/// its 2 x 2 pixels. Where the size is odd, the last column or row is taken twice.
void convertBgrxToYuv(const BgrxView &view,
                      PlanarPicture &picture,
                      int firstRow,
                      int rowCount,
                      ConversionCode code = ConversionCode::Fastest);

} // namespace vornic
