#include "app/window/window_questions.h"

#include "app/session/start_settings.h"
#include "app/window/VNAlertFreeSpace.h"
#include "app/window/VNHintWndCtroller.h"
#include "app/window/countdown.h"
#include "app/window/file_panel.h"
#include "app/window/main_window_link.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>

#include <utility>

namespace vornic {

namespace {

/// A question, or something to know: in bold what it is about, and more beneath.
void fill(QMessageBox &box, const QString &message, const QString &informativeText)
{
    box.setWindowTitle(QStringLiteral("Vornic"));
    box.setTextFormat(Qt::RichText);
    box.setText(QStringLiteral("<b>%1</b>").arg(message.toHtmlEscaped()));
    box.setInformativeText(informativeText.toHtmlEscaped());
    // The toolkit makes such a box as narrow as its title.
    box.setStyleSheet(QStringLiteral("QLabel#qt_msgbox_informativelabel { min-width: 24em; }"));
}

} // namespace

WindowQuestions::WindowQuestions(const MainWindowLink &main)
    : m_main(main)
    , m_movieFolder(QStandardPaths::writableLocation(QStandardPaths::MoviesLocation))
{
    if (!QFileInfo(m_movieFolder).isDir())
        m_movieFolder = QDir::homePath();
}

WindowQuestions::~WindowQuestions() = default;

void WindowQuestions::askAboutFreeSpace(std::function<void(bool)> answer)
{
    VNAlertFreeSpace::shareAlertFreeSpace().beginSheetForWindow(m_main.visible(), std::move(answer));
}

void WindowQuestions::runSavePanel(const QString &name,
                                   const QString &type,
                                   std::function<void(std::optional<QString>)> answer)
{
    auto *panel = new QFileDialog(m_main.visible(), tr("Save the recording as"));
    panel->setAcceptMode(QFileDialog::AcceptSave);
    panel->setNameFilter(tr("Movies (*.%1)").arg(type));
    panel->setDefaultSuffix(type);
    panel->setDirectory(m_movieFolder);
    panel->selectFile(name);
    runFilePanel(*panel, [this, answer = std::move(answer)](const std::optional<QString> &path) {
        if (path)
            m_movieFolder = QFileInfo(*path).path();
        answer(path);
    });
}

void WindowQuestions::showHint(std::function<void(int)> answer)
{
    VNHintWndCtroller &hint = VNHintWndCtroller::shareHintWndCtroller();
    if (hint.showAgain())
        hint.beginSheetModalForWindow(m_main.visible(), std::move(answer));
    else
        answer(responseContinue);
}

void WindowQuestions::askToRecordWithoutSound(std::function<void(bool)> answer)
{
    QMessageBox box(m_main.visible());
    fill(box, tr("Record without sound?"), tr("Sound is on, but there is no audio input."));
    const QPushButton *records = box.addButton(tr("Record without sound"), QMessageBox::AcceptRole);
    box.setDefaultButton(box.addButton(tr("Cancel"), QMessageBox::RejectRole));
    box.exec();
    answer(box.clickedButton() == records);
}

void WindowQuestions::countDown(std::function<void(bool)> answer)
{
    const int seconds = start_settings::countdownSeconds();
    if (seconds == 0) {
        answer(true);
        return;
    }
    m_countdown = std::make_unique<Countdown>(seconds, [this, answer = std::move(answer)](bool goOn) {
        m_countdown.release()->deleteLater();
        answer(goOn);
    });
}

void WindowQuestions::cancelCountdown()
{
    if (m_countdown)
        m_countdown->cancel();
}

void WindowQuestions::askForOtherFile(const QString &type, std::function<void(std::optional<QString>)> answer)
{
    runSavePanel(tr("Untitled"), type, [this, type, answer = std::move(answer)](const auto &path) {
        if (path) {
            answer(path);
            return;
        }
        QMessageBox box(m_main.visible());
        fill(box, tr("Give the recording up?"), tr("It cannot be brought back."));
        box.setDefaultButton(box.addButton(tr("Save elsewhere"), QMessageBox::RejectRole));
        const QPushButton *givesUp = box.addButton(tr("Give up"), QMessageBox::DestructiveRole);
        box.exec();
        if (box.clickedButton() == givesUp)
            answer(std::nullopt);
        else
            askForOtherFile(type, answer);
    });
}

bool WindowQuestions::confirmQuit(const QString &message, const QString &informativeText)
{
    QMessageBox box(m_main.visible());
    fill(box, message, informativeText);
    box.setDefaultButton(box.addButton(tr("No"), QMessageBox::RejectRole));
    const QPushButton *yes = box.addButton(tr("Yes"), QMessageBox::AcceptRole);
    box.exec();
    return box.clickedButton() == yes;
}

void WindowQuestions::alert(const QString &message, const QString &informativeText)
{
    QMessageBox box(m_main.visible());
    fill(box, message, informativeText);
    box.setDefaultButton(box.addButton(tr("OK"), QMessageBox::AcceptRole));
    box.exec();
}

void WindowQuestions::alertError(const QString &sentence)
{
    alert(tr("Error"), sentence);
}

} // namespace vornic
