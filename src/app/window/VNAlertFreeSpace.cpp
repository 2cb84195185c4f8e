#include "app/window/VNAlertFreeSpace.h"

#include "app/window/sheet.h"
#include "capture/spool/VNBufferMgr.h"

#include <QDialog>

#include <ui_VNAlertFreeSpace.h>

#include <utility>

namespace vornic {

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
