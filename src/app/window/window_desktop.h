#pragma once

#include "app/session/desktop_services.h"

#include <QCoreApplication>

#include <functional>
#include <memory>
#include <utility>

namespace vornic {

class IdleInhibitor;
class Notifier;

/// File browser, default programs, notifications and idling, as the desktop has them.
///
/// Owned by WindowFrontEnd; main thread only.
class WindowDesktop final : public DesktopServices
{
    Q_DECLARE_TR_FUNCTIONS(vornic::WindowDesktop)
public:
    WindowDesktop();
    ~WindowDesktop();
    WindowDesktop(const WindowDesktop &) = delete;
    WindowDesktop &operator=(const WindowDesktop &) = delete;

    /// Called with a sentence when something was not opened.
    void setOpeningFailed(std::function<void(const QString &sentence)> failed)
    {
        m_failed = std::move(failed);
    }
    /// Called with each movie that is complete.
    void setMovieSaved(std::function<void(const QString &path, double seconds, const QString &flaws)> saved)
    {
        m_saved = std::move(saved);
    }

    void reveal(const QString &path) override;
    void open(const QString &path) override;
    void announceMovie(const QString &path, double seconds, const QString &flaws) override;
    void inhibitIdle(bool inhibits) override;

private:
    void revealWith(const QString &path, const QString &activationToken);

    std::function<void(const QString &)> m_failed; ///< never empty, as the one below
    std::function<void(const QString &, double, const QString &)> m_saved;
    std::unique_ptr<IdleInhibitor> m_idleInhibitor; ///< null while the desktop may sleep
    std::unique_ptr<Notifier> m_notifier;
};

} // namespace vornic
