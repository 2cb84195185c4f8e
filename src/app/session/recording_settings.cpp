#include "app/session/recording_settings.h"

namespace vornic {

double captureFrameRate(RecordQuality quality)
{
    return quality == RecordQuality::High ? 30.0 : 20.0;
}

std::chrono::nanoseconds captureDelay(double frameRate)
{
    return std::chrono::nanoseconds(static_cast<std::int64_t>(1e9 / frameRate));
}

double movieFrameRate(RecordQuality quality)
{
    return quality == RecordQuality::Medium ? 25.0 : 30.0;
}

std::int32_t movieBitRate(RecordQuality quality, std::int64_t width, std::int64_t height)
{
    const double bitsPerPixel = quality == RecordQuality::Medium ? 1.2 : 2.5;
    return static_cast<std::int32_t>(static_cast<double>(width * height) * bitsPerPixel);
}

} // namespace vornic
