#pragma once

namespace vornic {

/// Notices that an input gives nothing but digital silence: a microphone that hears at all gives noise.
///
/// Part of whoever listens to the input; used on one thread. A plain value.
class SilenceWatch
{
public:
    /// Seconds.
    static constexpr double patience = 10;

    /// \a seconds of sound have come, the loudest sample of which is \a peak. True once, at the tenth second in which
    /// nothing was heard.
    [[nodiscard]] bool isNoticed(double peak, double seconds)
    {
        if (peak > 0)
            m_silent = 0;
        else
            m_silent += seconds;
        if (m_isTold || m_silent < patience)
            return false;
        m_isTold = true;
        return true;
    }

private:
    double m_silent = 0;
    bool m_isTold = false;
};

} // namespace vornic
