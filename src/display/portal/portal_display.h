#pragma once

#include "display/display_backend.h"

#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace vornic {

class ScreenCast;
class WaylandOutputWatch;
struct WaylandOutput;
struct CastScreen;

/// The main display of a Wayland desktop, which shows it through its screen cast portal and PipeWire.
///
/// Made by the table of backends. Before prepare() it has a size and gives no pictures; then it is the monitor that the
/// user has chosen, and stays that one, also at the next start. When the desktop ends the cast, it counts as gone until release().
class PortalDisplay final : public DisplayBackend
{
public:
    /// Whether this is a Wayland session.
    [[nodiscard]] static bool isForThisSession();
    /// Null with one sentence for the user. Asks the portal whether it is there, and the user nothing.
    [[nodiscard]] static std::unique_ptr<DisplayBackend> create(QString &whyNot);
    ~PortalDisplay() override;

    void prepare(const QString &parentWindow, const AccessAnswer &answer) override;
    void release() override;
    [[nodiscard]] std::uint32_t mainDisplayId() const override;
    [[nodiscard]] QSize mainDisplaySize() const override;
    [[nodiscard]] QPoint mainDisplayOrigin() const override;
    [[nodiscard]] QString mainDisplayName() const override;
    [[nodiscard]] std::shared_ptr<const BitmapImage> grab(const QRect &rectangle) override;
    [[nodiscard]] QPoint pointerPosition() override;
    [[nodiscard]] std::shared_ptr<const CursorShape> cursorShape() override;

private:
    PortalDisplay();
    [[nodiscard]] std::shared_ptr<CastScreen> screen() const;
    void setScreen(std::shared_ptr<CastScreen> screen);
    [[nodiscard]] std::vector<WaylandOutput> outputs() const;
    [[nodiscard]] std::optional<WaylandOutput> monitor() const;
    void learnMonitor();

    std::unique_ptr<WaylandOutputWatch>
        m_outputs;                      ///< null where no compositor answers: sizes are known by casts alone
    std::unique_ptr<ScreenCast> m_cast; ///< on the main thread; null before prepare()
    mutable std::mutex m_mutex;
    std::shared_ptr<CastScreen> m_screen; ///< guarded, as the next; null before there is a first picture
    QString m_monitorName;                ///< of the one that was chosen last; empty where that is not known
};

} // namespace vornic
