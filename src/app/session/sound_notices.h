#pragma once

#include <QString>

#include <functional>

namespace vornic {

/// What a person learns of the sound of a recording that runs.
///
/// Implemented by a front end; called on the main thread only. Everything does nothing by default.
class SoundNotices
{
public:
    /// No sound has come for some seconds, and without it no picture is kept; \a goOn records without. \a goOn is
    /// called once at most, and only before the recording ends.
    virtual void soundIsMissing(const std::function<void()> & /*goOn*/) { }
    /// The sound's input is gone: pictures go on, and so does the sound once the input is there again, which is told with
    /// false.
    virtual void soundIsLost(bool /*isLost*/) { }
    /// Of two sounds, the one called \a name is gone, and the other is heard; false once it is there again.
    virtual void oneSoundIsLost(const QString & /*name*/, bool /*isLost*/) { }
    /// How loud the sound is that is recorded, many times a second: the loudest sample, as a share of the loudest that there
    /// is.
    virtual void showLevel(double /*peak*/) { }
    /// For ten seconds the microphone \a name has given nothing but digital silence: it may be muted. Once a recording.
    virtual void nothingIsHeard(const QString & /*name*/) { }

protected:
    SoundNotices() = default;
    ~SoundNotices() = default;
    SoundNotices(const SoundNotices &) = default;
    SoundNotices &operator=(const SoundNotices &) = default;
};

} // namespace vornic
