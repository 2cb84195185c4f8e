#include "app/window/window_progress.h"

#include "app/session/room_text.h"
#include "app/window/main_window.h"
#include "app/window/main_window_link.h"
#include "app/window/stop_item.h"
#include "base/free_space.h"
#include "capture/spool/VNBufferMgr.h"
#include "desktop/notifier.h"
#include "display/display_scale.h"
#include "display/main_display.h"
#include "geometry/screen_geometry.h"
#include "overlay/overlay_geometry.h"

#include <utility>

namespace vornic {

WindowProgress::WindowProgress(const MainWindowLink &main)
    : m_main(main)
    , m_notifier(std::make_unique<Notifier>())
{
}

WindowProgress::~WindowProgress() = default;

void WindowProgress::showStopItem(const QString &title, const QRectF &recorded)
{
    const QRect frame = desktopPixels(recorded, static_cast<int>(overlayMargin), mainDisplayPlacement());
    m_stopItem = std::make_unique<StopItem>(title, displayScale(*displayScreen()).logicalAround(frame));
    QObject::connect(m_stopItem.get(), &StopItem::stopAsked, m_stopItem.get(), m_stop);
    QObject::connect(m_stopItem.get(), &StopItem::pauseAsked, m_stopItem.get(), [this] {
        if (m_pause)
            m_pause();
    });
    m_isInMemory = liesInMemory(VNBufferMgr::cachePath());
}

void WindowProgress::setStopItemTitle(const QString &title)
{
    if (!m_stopItem)
        return;
    m_stopItem->withdrawOffer(); // told of a picture that is kept: nothing is waited for
    m_stopItem->setTitle(title);
}

void WindowProgress::showTimeLeft(std::int64_t seconds)
{
    if (m_stopItem)
        m_stopItem->setTimeLeft(seconds);
}

void WindowProgress::showPaused(bool isPaused)
{
    if (m_stopItem)
        m_stopItem->setPaused(isPaused);
}

void WindowProgress::hideStopItem()
{
    if (!m_stopItem)
        return;
    // The item's own click may be what led here.
    m_stopItem.release()->deleteLater();
    if (m_main.window)
        m_main.window->showStatus({});
}

void WindowProgress::showRoom(const RecordingRoom &room)
{
    if (!m_stopItem)
        return;
    const QString text = sizeAndRoom(room);
    m_stopItem->setRoom(text);
    if (m_main.window)
        m_main.window->showStatus((m_isInMemory ? tr("In memory: %1") : tr("On disk: %1")).arg(text));
}

void WindowProgress::warnOfLittleRoom(const RecordingRoom &room)
{
    m_notifier->show({ .title = tr("Little room is left for the recording"),
                       .body = littleRoom(room),
                       .actionLabel = {},
                       .action = {} });
}

void WindowProgress::soundIsMissing(const std::function<void()> &goOn)
{
    if (!m_stopItem)
        return;
    m_stopItem->setTitle(tr("no sound"));
    m_stopItem->offerToGoOnWithoutSound(goOn);
    m_notifier->show({ .title = tr("No sound has come yet"),
                       .body = tr("The recording waits for it and keeps no picture meanwhile."),
                       .actionLabel = tr("Go on without sound"),
                       .action = [goOn](const QString & /*token*/) { goOn(); } });
}

void WindowProgress::soundIsLost(bool isLost)
{
    if (!m_stopItem)
        return;
    m_stopItem->setSoundIsLost(isLost);
    m_notifier->show({ .title = isLost ? tr("The audio input is gone") : tr("The audio input is back"),
                       .body = isLost
                           ? tr("The recording goes on without sound, and with it once the input is back.")
                           : tr("Its sound is recorded again."),
                       .actionLabel = {},
                       .action = {} });
}

void WindowProgress::oneSoundIsLost(const QString &name, bool isLost)
{
    if (!m_stopItem)
        return;
    m_notifier->show({ .title = (isLost ? tr("“%1” is gone") : tr("“%1” is back")).arg(name),
                       .body = isLost
                           ? tr("The recording goes on with the other sound, and with both once it is back.")
                           : tr("Its sound is recorded again."),
                       .actionLabel = {},
                       .action = {} });
}

void WindowProgress::showLevel(double peak)
{
    if (m_stopItem)
        m_stopItem->showLevel(peak);
}

void WindowProgress::nothingIsHeard(const QString &name)
{
    m_notifier->show({ .title = tr("Nothing is heard from %1.").arg(name),
                       .body = tr("It may be muted, or switched off. The recording goes on."),
                       .actionLabel = {},
                       .action = {} });
}

void WindowProgress::allowBar()
{
    if (m_stopItem)
        m_stopItem->allowBar();
}

void WindowProgress::pointAtStopItem()
{
    if (m_stopItem)
        m_stopItem->drawAttention();
}

} // namespace vornic
