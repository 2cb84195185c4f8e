#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <memory>

namespace vornic {

/// Makes recorded sound longer or shorter by some millionths, without a step in it: a sample rate converter between
/// two clocks that are meant to be the same.
///
/// Owned by whoever places recorded sound on the absolute clock, and used on one thread at a time. Samples are
/// interleaved, linear PCM; what comes out has the format of what goes in.
class DriftResampler
{
public:
    /// In millionths, either way. A tone that is changed by as much is not heard to be another one.
    static constexpr int maxCompensation = 1000;

    /// \a bitsPerChannel: 16, signed, or 8, unsigned. Throws std::runtime_error for sound that nothing can be made of.
    DriftResampler(int bitsPerChannel, int channels, int framesPerSecond);
    ~DriftResampler();
    DriftResampler(const DriftResampler &) = delete;
    DriftResampler &operator=(const DriftResampler &) = delete;

    /// From here on, a million frames become as many more, or fewer where it is below 0.
    void setCompensation(int framesPerMillion);
    /// What has become ready with \a frames, which are whole.
    [[nodiscard]] QByteArray resample(QByteArrayView frames);
    /// Frames that were put in and have not come out yet: it looks ahead by less than a millisecond.
    [[nodiscard]] double heldFrames() const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace vornic
