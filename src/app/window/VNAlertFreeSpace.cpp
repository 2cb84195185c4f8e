#include "app/window/VNAlertFreeSpace.h"

#include "app/session/time_text.h"
#include "app/window/sheet.h"
#include "base/free_space.h"
#include "capture/spool/VNBufferMgr.h"
#include "options/VNOption.h"

#include <QDialog>
#include <QDir>
#include <QLocale>

#include <ui_VNAlertFreeSpace.h>

#include <algorithm>
#include <utility>

namespace vornic {

namespace {

/// What a recording of a display of 1920 x 1080 takes at most, when everything on it moves; as the help says.
constexpr double bytesPerSecond = 25e6;
constexpr double pixelsOfThat = 1920.0 * 1080;

RecordingSpace spaceNow()
{
    const QString folder = VNBufferMgr::cachePath();
    const QSizeF display = VNOption::screenFrame().size();
    return { .freeBytes = freeSpaceBytes(folder),
             .folder = folder,
             .pixels = display.width() * display.height() };
}

} // namespace

QString spaceText(const RecordingSpace &space)
{
    const QString free = QLocale().formattedDataSize(static_cast<qint64>(space.freeBytes));
    const QString folder = QDir::toNativeSeparators(space.folder);
    const std::uint64_t kept = VNBufferMgr::limitSpaceForRecord();
    if (space.freeBytes <= kept)
        return VNAlertFreeSpace::tr("%1 is free in %2: a recording would stop at once.").arg(free, folder);
    const double rate = bytesPerSecond * std::max(space.pixels, 1.0) / pixelsOfThat;
    const double seconds = static_cast<double>(space.freeBytes - kept) / rate;
    return VNAlertFreeSpace::tr(
               "%1 is free in %2. This lasts for %3 min when everything on the screen moves, and for "
               "much longer when little does.")
        .arg(free, folder, minutesAndSeconds(seconds));
}

VNAlertFreeSpace &VNAlertFreeSpace::shareAlertFreeSpace()
{
    static auto *const shared = new VNAlertFreeSpace;
    return *shared;
}

void VNAlertFreeSpace::beginSheetForWindow(QWidget *window, std::function<void(bool)> handler)
{
    m_handler = std::move(handler);
    m_window = makeSheet<Ui::VNAlertFreeSpace>(window, [this](Ui::VNAlertFreeSpace &ui) {
        ui.explanation->setText(
            tr("A recording wants %1. It stops by itself when the disk is almost full, and what was "
               "recorded becomes a movie.")
                .arg(VNBufferMgr::descriptionOfFreeSpaceRequired()));
        ui.space->setText(spaceText(spaceNow()));
        connect(ui.continueButton, &QAbstractButton::clicked, this, &VNAlertFreeSpace::continueAction);
        connect(ui.cancelButton, &QAbstractButton::clicked, this, &VNAlertFreeSpace::cancelAction);
    });
    m_window->setWindowModality(Qt::ApplicationModal);
    connect(m_window, &QDialog::finished, this, &VNAlertFreeSpace::cancelAction); // closed otherwise
    m_window->show();
}

void VNAlertFreeSpace::endWithContinue(bool goOn)
{
    const std::function<void(bool)> handler = std::exchange(m_handler, nullptr);
    if (QDialog *window = std::exchange(m_window, nullptr))
        window->close();
    if (handler)
        handler(goOn);
}

} // namespace vornic
