#include "app/overlay_actions.h"

#include "overlay/VNRecoderWindow.h"
#include "overlay/VNRecorderWndCtrl.h"

namespace vornic {

OverlayActions::~OverlayActions()
{
    if (m_controller) {
        m_controller->setDelegate(nullptr);
        m_controller->setOptions(nullptr);
    }
}

void OverlayActions::adopt(VNOption &options, VNRecorderWndCtrlDelegate &delegate)
{
    if (m_controller) {
        m_controller->setOptions(&options);
        m_controller->setDelegate(&delegate);
    }
}

void OverlayActions::reload()
{
    if (m_controller)
        m_controller->reloadData();
}

void OverlayActions::place()
{
    if (m_controller)
        m_controller->placeWindow();
}

void OverlayActions::orderOut()
{
    if (m_controller && m_controller->window())
        m_controller->window()->orderOut();
}

std::chrono::milliseconds OverlayActions::settlingTime() const
{
    const VNRecoderWindow *overlay = m_controller ? m_controller->window() : nullptr;
    return std::chrono::milliseconds(overlay && overlay->isVisible() ? 100 : 0);
}

} // namespace vornic
