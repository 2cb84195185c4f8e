#pragma once

#include <QString>

#include <cstdint>

namespace vornic {

/// What a person sees of a movie that is written.
///
/// Implemented by a front end; called on the main thread only. Everything does nothing by default.
class MovieProgress
{
public:
    /// \a frames: how many the movie will have.
    virtual void beginProgress(std::uint64_t /*frames*/) { }
    /// 0 to 100.
    virtual void setProgress(double /*percent*/) { }
    virtual void endProgress() { }
    /// The movie has become larger than was asked for: it is written again, with a lower bit rate.
    virtual void movieIsWrittenAgain() { }
    /// There is no movie, but the recording \a id stays and can be made into one later.
    virtual void recordingKept(const QString & /*id*/) { }
    /// The movie stands in \a path, because another file came to stand in \a meant while it was recorded.
    virtual void movieRenamed(const QString & /*meant*/, const QString & /*path*/) { }

protected:
    MovieProgress() = default;
    ~MovieProgress() = default;
    MovieProgress(const MovieProgress &) = default;
    MovieProgress &operator=(const MovieProgress &) = default;
};

} // namespace vornic
