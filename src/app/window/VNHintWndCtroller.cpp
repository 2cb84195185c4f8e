#include "app/window/VNHintWndCtroller.h"

#include "app/session/recording_questions.h"
#include "app/session/room_text.h"
#include "app/window/sheet.h"
#include "app/window/stop_item.h"
#include "base/free_space.h"
#include "base/user_defaults.h"
#include "capture/spool/VNBufferMgr.h"
#include "observing/key_path_binding.h"

#include <QDialog>

#include <ui_VNHintWndCtroller.h>

#include <utility>

namespace vornic {

namespace {

const QString showAgainKey = QStringLiteral("VNShowHintWndAgain");

} // namespace

QString howToStop(bool hasTray, const QString &key)
{
    if (key.isEmpty())
        return hasTray
            ? VNHintWndCtroller::tr("The window is minimised while the recording runs. To stop it, "
                                    "click the red icon in the panel of the desktop.")
            : VNHintWndCtroller::tr("The window is minimised while the recording runs. To stop it, "
                                    "click the bar with the clock at the edge of the screen.");
    return (hasTray ? VNHintWndCtroller::tr("The window is minimised while the recording runs. To stop it, "
                                            "click the red icon in the panel of the desktop, or press %1.")
                    : VNHintWndCtroller::tr(
                        "The window is minimised while the recording runs. To stop it, "
                        "click the bar with the clock at the edge of the screen, or press %1."))
        .arg(key);
}

VNHintWndCtroller &VNHintWndCtroller::shareHintWndCtroller()
{
    static auto *const shared = new VNHintWndCtroller;
    return *shared;
}

bool VNHintWndCtroller::showAgain() const
{
    const QVariant stored = user_defaults::value(showAgainKey);
    return !stored.isValid() || stored.toBool();
}

void VNHintWndCtroller::setShowAgain(bool showAgain)
{
    user_defaults::setValue(showAgainKey, showAgain ? 1 : 0); // stored as a number
    emit showAgainChanged();
}

void VNHintWndCtroller::beginSheetModalForWindow(QWidget *parent, std::function<void(int)> handler)
{
    m_parent = parent;
    m_window = makeSheet<Ui::VNHintWndCtroller>(parent, [this](Ui::VNHintWndCtroller &ui) {
        QString text = howToStop(StopItem::hasTray(), m_key);
        if (const QString folder = VNBufferMgr::cachePath(); liesInMemory(folder))
            text += QStringLiteral("\n\n") + liesInMemoryText(folder);
        ui.explanation->setText(text);
        connect(ui.startButton, &QAbstractButton::clicked, this, &VNHintWndCtroller::startRecordAction);
        connect(ui.cancelButton, &QAbstractButton::clicked, this, &VNHintWndCtroller::cancelAction);
        new KeyPathBinding(ui.chkShowAgain, "checked", this, "showAgain");
    });
    connect(m_window, &QDialog::finished, this, [this, handler = std::move(handler)](int response) {
        m_window.clear();
        m_parent.clear();
        // Closed in whatever other way is no wish to record.
        if (handler)
            handler(response == RecordingQuestions::responseContinue ? response
                                                                     : RecordingQuestions::responseStop);
    });
    m_window->open();
}

void VNHintWndCtroller::startRecordAction()
{
    if (m_window)
        m_window->done(RecordingQuestions::responseContinue);
}

void VNHintWndCtroller::cancelAction()
{
    if (m_window)
        m_window->done(RecordingQuestions::responseStop);
}

} // namespace vornic
