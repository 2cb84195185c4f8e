#pragma once

#include <QString>

#include <memory>
#include <vector>

namespace vornic {

class BlankingPause;
class DBusInhibition;

/// While it lives, the desktop neither becomes idle nor blanks or locks the screen, and the machine does not
/// go to sleep; the end of the process ends that too, however it comes.
///
/// Made by whoever records or encodes, on the main thread, and needs an event loop there. It waits for no
/// service; where there is none to ask, nothing happens.
class IdleInhibitor
{
public:
    /// \a reason may be shown to the user: "Recording the screen".
    explicit IdleInhibitor(const QString &reason);
    ~IdleInhibitor();
    IdleInhibitor(const IdleInhibitor &) = delete;
    IdleInhibitor &operator=(const IdleInhibitor &) = delete;

private:
    struct Release {
        void operator()(DBusInhibition *inhibition) const;
    };

    std::unique_ptr<BlankingPause> m_blankingPause; ///< null where the build knows no display server
    std::vector<std::unique_ptr<DBusInhibition, Release>> m_inhibitions;
};

} // namespace vornic
