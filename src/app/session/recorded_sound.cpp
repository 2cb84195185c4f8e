#include "app/session/recorded_sound.h"

#include "app/session/recording_clock.h"
#include "audio/AudioStreamBasicDescription.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace vornic {

namespace {

/// Frames that two roundings may differ by.
constexpr std::int64_t tolerance = 2;

QByteArray silence(std::int64_t frames, const AudioStreamBasicDescription &format)
{
    return { frames * format.bytesPerFrame(), format.mBitsPerChannel == 8 ? static_cast<char>(0x80) : '\0' };
}

} // namespace

std::vector<QByteArray> RecordedSound::partsOf(const QByteArray &chunk,
                                               const AudioStreamBasicDescription &format)
{
    const std::int64_t bytesPerFrame = format.bytesPerFrame();
    if (bytesPerFrame <= 0)
        return {};
    const double rate = format.mSampleRate;
    const std::int64_t frames = chunk.size() / bytesPerFrame;
    const double begin = m_clock.beginOfSound() + static_cast<double>(m_heard) / rate;
    m_heard += frames;
    std::vector<QByteArray> parts;
    for (const auto &part : m_clock.recordedPartsOf(begin, begin + static_cast<double>(frames) / rate)) {
        const std::int64_t end = std::llround((part.end - begin) * rate);
        std::int64_t first = std::llround((part.begin - begin) * rate);
        // A chunk is placed some milliseconds later than it was captured, so it may come before its end is there, and a
        // pause with it: what was taken or left out then is made good behind the pause.
        const std::int64_t surplus
            = m_recorded - std::llround(m_clock.recordedSeconds(m_clock.beginOfSound(), part.begin) * rate);
        if (surplus > tolerance)
            first = std::min(first + surplus, end);
        else if (surplus < -tolerance)
            add(parts, silence(-surplus, format), format);
        add(parts, chunk.sliced(first * bytesPerFrame, (end - first) * bytesPerFrame), format);
    }
    return parts;
}

void RecordedSound::add(std::vector<QByteArray> &parts,
                        QByteArray part,
                        const AudioStreamBasicDescription &format)
{
    if (part.isEmpty())
        return;
    m_recorded += part.size() / format.bytesPerFrame();
    parts.push_back(std::move(part));
}

} // namespace vornic
