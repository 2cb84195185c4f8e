#pragma once

namespace vornic {

/// What a level meter shows of the peaks that it is given: up at once, down by 20 dB a second; the highest one stays for a
/// second and a half. In dBFS, decibels below the loudest that there is.
///
/// Part of a LevelMeter; a plain value.
class LevelBallistics
{
public:
    /// Less than this is shown as nothing.
    static constexpr double lowest = -60;

    /// \a peak: the loudest sample of the last \a seconds, as a share of the loudest that there is.
    void update(double peak, double seconds);
    [[nodiscard]] double level() const { return m_level; }
    [[nodiscard]] double held() const { return m_held; }
    /// A sample has reached the loudest that there is, for as long as that is held.
    [[nodiscard]] bool isClipping() const;

private:
    double m_level = lowest;
    double m_held = lowest;
    double m_heldFor = 0; ///< seconds
};

} // namespace vornic
