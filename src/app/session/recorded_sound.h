#pragma once

#include <QByteArray>

#include <cstdint>
#include <vector>

namespace vornic {

class RecordingClock;
struct AudioStreamBasicDescription;

/// The sound of one recording without that of its pauses, cut to the sample.
///
/// Part of a Recording; used on the recorder's thread.
class RecordedSound
{
public:
    /// Borrows \a clock for life.
    explicit RecordedSound(const RecordingClock &clock)
        : m_clock(clock)
    {
    }

    /// What is recorded of the next chunk of the input, one behind the other. The first one tells the clock's origin
    /// before.
    [[nodiscard]] std::vector<QByteArray> partsOf(const QByteArray &chunk,
                                                  const AudioStreamBasicDescription &format);

private:
    void add(std::vector<QByteArray> &parts, QByteArray part, const AudioStreamBasicDescription &format);

    const RecordingClock &m_clock;
    std::int64_t m_heard = 0;    ///< frames that have come
    std::int64_t m_recorded = 0; ///< frames that were told to be recorded
};

} // namespace vornic
