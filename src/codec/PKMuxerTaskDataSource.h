#pragma once

#include <cstdint>
#include <memory>
#include <optional>

namespace vornic {

class PKAudioFrame2;
class PKVideoFrame2;

/// Where a PKMuxerTask gets pictures and sound from.
///
/// The task calls these on threads of its own, pictures and sound possibly at the same time, but each
/// function never twice at once and none after the task has reported its end.
class PKMuxerTaskDataSource
{
public:
    virtual ~PKMuxerTaskDataSource() = default;
    PKMuxerTaskDataSource(const PKMuxerTaskDataSource &) = delete;
    PKMuxerTaskDataSource &operator=(const PKMuxerTaskDataSource &) = delete;

    /// The recording's length in PKTimebase ticks, for the percentage; 0 when unknown.
    [[nodiscard]] virtual std::int64_t PKMuxerTaskLength() = 0;
    /// The next picture; null at the end, after which it is not called again.
    [[nodiscard]] virtual std::shared_ptr<const PKVideoFrame2> PKMuxerTaskGetVideoFrame() = 0;
    /// The next block of sound; null at the end, after which it is not called again.
    [[nodiscard]] virtual std::shared_ptr<const PKAudioFrame2> PKMuxerTaskGetAudioFrame() = 0;

    /// How much of the work is done, from 0 to 1, when all is written that is shown before \a ticks; nothing where the
    /// source knows no better than the share of the length. Only grows. Called at any time, also during the others.
    [[nodiscard]] virtual std::optional<double> shareOfWork(std::int64_t /*ticks*/) { return std::nullopt; }

protected:
    PKMuxerTaskDataSource() = default;
};

} // namespace vornic
