#pragma once

#include "app/session/desktop_services.h"

#include <QCoreApplication>

#include <memory>

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

    void reveal(const QString &path) override;
    void open(const QString &path) override;
    void announceMovie(const QString &path, double seconds) override;
    void inhibitIdle(bool inhibits) override;

private:
    std::unique_ptr<IdleInhibitor> m_idleInhibitor; ///< null while the desktop may sleep
    std::unique_ptr<Notifier> m_notifier;
};

} // namespace vornic
