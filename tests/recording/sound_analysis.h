#pragma once

#include <QList>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vornic {

/// A sine as it is heard in a stretch of sound.
struct HeardTone {
    double amplitude; ///< of full scale
    double phase;     ///< radians, against a sine of the same pitch that begins at time 0
};

/// The parts of pitch \a hertz of interleaved 16-bit stereo sound of 48 kHz, one for every 10 ms; left and
/// right together.
std::vector<HeardTone> tonesIn(const std::vector<std::int16_t> &sound, double hertz);

/// When quiet sound gets loud, in seconds.
std::vector<double> beepsIn(const std::vector<std::int16_t> &sound);

/// When a movie's dark picture gets bright, in seconds; without the flashes before which the recorder, on a
/// loaded machine, took no picture for 45 ms.
std::vector<double> flashesIn(const QString &movie);

/// How far flashes are from their beeps, milliseconds.
struct Distances {
    std::size_t count = 0;
    double median = 0;
    double largest = 0;

    [[nodiscard]] bool areSmall() const { return count >= 6 && median <= 20 && largest <= 40; }
};

/// Of a movie's pictures from its sound, without the first second and the flashes that begin near one of \a cuts, seconds;
/// prints them.
Distances distancesIn(const QString &movie, const QList<double> &cuts = {});

} // namespace vornic
